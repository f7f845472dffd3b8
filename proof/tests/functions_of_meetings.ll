; Loops in whose rounds paths part and meet again.

define i32 @counts(i32 %a, i32 %b) {
entry:
  br label %loop
loop:
  %round = phi i32 [ 0, %entry ], [ %next, %joined ]
  %sum = phi i32 [ %b, %entry ], [ %grown, %joined ]
  %bit = shl i32 1, %round
  %part = and i32 %a, %bit
  %empty = icmp eq i32 %part, 0
  br i1 %empty, label %joined, label %more
more:
  %added = add i32 %sum, %b
  br label %joined
joined:
  %grown = phi i32 [ %sum, %loop ], [ %added, %more ]
  %next = add i32 %round, 1
  %again = icmp ult i32 %next, 3
  br i1 %again, label %loop, label %end
end:
  ret i32 %grown
}

; One path has stored where the other has not.
define i32 @stores_on_one_path(ptr %buffer, i32 %a) {
entry:
  %x = alloca i32, align 4
  store i32 1, ptr %x, align 4
  br label %loop
loop:
  %round = phi i32 [ 0, %entry ], [ %next, %joined ]
  %bit = shl i32 1, %round
  %part = and i32 %a, %bit
  %empty = icmp eq i32 %part, 0
  br i1 %empty, label %joined, label %more
more:
  store i32 %a, ptr %buffer, align 4
  store i32 %a, ptr %x, align 4
  br label %joined
joined:
  %next = add i32 %round, 1
  %again = icmp ult i32 %next, 2
  br i1 %again, label %loop, label %end
end:
  %from_caller = load i32, ptr %buffer, align 4
  %own = load i32, ptr %x, align 4
  %frozen = freeze i32 %from_caller
  %result = xor i32 %frozen, %own
  ret i32 %result
}

; The same with the ways the other way around: which of the paths comes first is of no matter.
define i32 @stores_on_the_other_path(ptr %buffer, i32 %a) {
entry:
  %x = alloca i32, align 4
  store i32 1, ptr %x, align 4
  br label %loop
loop:
  %round = phi i32 [ 0, %entry ], [ %next, %joined ]
  %bit = shl i32 1, %round
  %part = and i32 %a, %bit
  %empty = icmp eq i32 %part, 0
  br i1 %empty, label %more, label %joined
more:
  store i32 %a, ptr %buffer, align 4
  store i32 %a, ptr %x, align 4
  br label %joined
joined:
  %next = add i32 %round, 1
  %again = icmp ult i32 %next, 2
  br i1 %again, label %loop, label %end
end:
  %from_caller = load i32, ptr %buffer, align 4
  %own = load i32, ptr %x, align 4
  %frozen = freeze i32 %from_caller
  %result = xor i32 %frozen, %own
  ret i32 %result
}

; What the path has found before the loop still holds in it.
define i32 @keeps_what_all_know(i32 %a, i32 %b) {
entry:
  %few = icmp ult i32 %a, 4
  br i1 %few, label %loop, label %many
many:
  ret i32 77
loop:
  %round = phi i32 [ 0, %entry ], [ %next, %joined ]
  %bit = shl i32 1, %round
  %part = and i32 %b, %bit
  %empty = icmp eq i32 %part, 0
  br i1 %empty, label %joined, label %more
more:
  br label %joined
joined:
  %next = add i32 %round, 1
  %again = icmp ult i32 %next, 4
  br i1 %again, label %loop, label %end
end:
  %still_few = icmp ult i32 %a, 4
  br i1 %still_few, label %right, label %never
never:
  unreachable
right:
  ret i32 %a
}
