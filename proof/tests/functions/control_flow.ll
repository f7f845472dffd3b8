; Branches, switches, loops, selects and freezes.

define i32 @branch(i32 %a, i32 %b) {
entry:
  %less = icmp slt i32 %a, %b
  br i1 %less, label %yes, label %no
yes:
  %sum = add i32 %a, 7
  br label %end
no:
  %difference = sub i32 %a, %b
  br label %end
end:
  %result = phi i32 [ %sum, %yes ], [ %difference, %no ]
  ret i32 %result
}

; The two phis of the loop's start swap: each takes the other's value of the round before.
define i32 @swapping_phis(i32 %a, i32 %b, i32 %rounds) {
entry:
  %few = and i32 %rounds, 3
  br label %loop
loop:
  %x = phi i32 [ %a, %entry ], [ %y, %loop ]
  %y = phi i32 [ %b, %entry ], [ %x, %loop ]
  %round = phi i32 [ 0, %entry ], [ %next, %loop ]
  %next = add i32 %round, 1
  %again = icmp ult i32 %next, %few
  br i1 %again, label %loop, label %end
end:
  %scaled = shl i32 %x, 1
  %result = xor i32 %scaled, %y
  ret i32 %result
}

define i64 @loop_of_sums(i64 %a, i32 %rounds) {
entry:
  %few = and i32 %rounds, 7
  %none = icmp eq i32 %few, 0
  br i1 %none, label %end, label %loop
loop:
  %round = phi i32 [ %next, %loop ], [ 0, %entry ]
  %sum = phi i64 [ %grown, %loop ], [ 1, %entry ]
  %grown = add i64 %sum, %a
  %next = add i32 %round, 1
  %done = icmp eq i32 %next, %few
  br i1 %done, label %end, label %loop
end:
  %result = phi i64 [ 99, %entry ], [ %grown, %loop ]
  ret i64 %result
}

define i32 @switch_32(i32 %a) {
entry:
  switch i32 %a, label %other [ i32 0, label %zero
                                i32 1, label %one_or_minus_one
                                i32 -1, label %one_or_minus_one
                                i32 2147483648, label %other ]
zero:
  br label %end
one_or_minus_one:
  br label %end
other:
  br label %end
end:
  %result = phi i32 [ 10, %zero ], [ %a, %one_or_minus_one ], [ 30, %other ]
  ret i32 %result
}

define i8 @switch_8(i8 %a) {
entry:
  switch i8 %a, label %other [ i8 -128, label %lowest
                               i8 5, label %five ]
lowest:
  ret i8 1
five:
  ret i8 2
other:
  ret i8 3
}

define i64 @switch_64(i64 %a) {
entry:
  switch i64 %a, label %other [ i64 -1, label %last
                                i64 4294967296, label %other ]
last:
  ret i64 1
other:
  ret i64 %a
}

define i16 @switch_16(i16 %a) {
entry:
  switch i16 %a, label %other [ i16 -1, label %last ]
last:
  ret i16 1
other:
  ret i16 %a
}

define i1 @select_truth(i1 %condition, i1 %a, i1 %b) {
  %result = select i1 %condition, i1 %a, i1 %b
  ret i1 %result
}

; "a and b", "a or b" as the compiler writes them where b may mean nothing.
define i1 @logical_and(i1 %a, i1 %b) {
  %result = select i1 %a, i1 %b, i1 false
  ret i1 %result
}

define i1 @logical_or(i1 %a, i1 %b) {
  %result = select i1 %a, i1 true, i1 %b
  ret i1 %result
}

; What the branch has found holds in the select behind it.
define i32 @select_behind_branch(i32 %a, i32 %b) {
entry:
  %less = icmp ult i32 %a, %b
  br i1 %less, label %yes, label %no
yes:
  %first = select i1 %less, i32 1, i32 2
  ret i32 %first
no:
  %second = select i1 %less, i32 3, i32 4
  ret i32 %second
}

define i32 @select_of_addresses(i1 %condition, i32 %a) {
  %x = alloca i32, align 4
  %y = alloca i32, align 4
  store i32 %a, ptr %x, align 4
  store i32 5, ptr %y, align 4
  %chosen = select i1 %condition, ptr %x, ptr %y
  %result = load i32, ptr %chosen, align 4
  ret i32 %result
}

define i32 @phi_of_addresses(i32 %a) {
entry:
  %x = alloca i32, align 4
  %y = alloca i32, align 4
  store i32 %a, ptr %x, align 4
  store i32 5, ptr %y, align 4
  %low = icmp ult i32 %a, 100
  br i1 %low, label %yes, label %end
yes:
  br label %end
end:
  %chosen = phi ptr [ %x, %yes ], [ %y, %entry ]
  %result = load i32, ptr %chosen, align 4
  ret i32 %result
}

define i1 @phi_of_truths(i1 %a, i1 %b, i8 %c) {
entry:
  %low = icmp ult i8 %c, 100
  br i1 %low, label %yes, label %no
yes:
  br label %end
no:
  br label %end
end:
  %truth = phi i1 [ %a, %yes ], [ %b, %no ]
  %byte = phi i8 [ 1, %yes ], [ %c, %no ]
  %odd = trunc i8 %byte to i1
  %result = xor i1 %truth, %odd
  ret i1 %result
}

define i8 @freeze_8(i8 %a) {
  %frozen = freeze i8 %a
  ret i8 %frozen
}

define i16 @freeze_16(i16 %a) {
  %frozen = freeze i16 %a
  ret i16 %frozen
}

define i32 @freeze_32(i32 %a) {
  %frozen = freeze i32 %a
  ret i32 %frozen
}

define i64 @freeze_64(i64 %a) {
  %frozen = freeze i64 %a
  ret i64 %frozen
}

; Whatever a number that means nothing is frozen to, it is one number.
define i32 @freeze_of_nothing(i32 %a) {
  %frozen = freeze i32 poison
  %difference = sub i32 %frozen, %frozen
  %result = add i32 %difference, %a
  ret i32 %result
}

; Poison in the arm that is not taken is no harm.
define i32 @poison_not_chosen(i1 %condition, i32 %a) {
  %x = select i1 %condition, i32 %a, i32 poison
  %y = select i1 %condition, i32 %x, i32 4
  ret i32 %y
}

define i32 @unreachable_is_not_reached(i32 %a) {
entry:
  %rest = and i32 %a, 1
  switch i32 %rest, label %never [ i32 0, label %even
                                   i32 1, label %odd ]
even:
  ret i32 100
odd:
  ret i32 200
never:
  unreachable
}
