; What depends on a number that is one of a list, as the number of a format is: %n below.

@table = constant [8 x i32] [i32 5, i32 7, i32 5, i32 9, i32 5, i32 7, i32 2, i32 5], align 4

; Finds a word of a table.
define i32 @loads(i32 %n, i32 %x) {
entry:
  %place = zext i32 %n to i64
  %at = getelementptr inbounds [8 x i32], ptr @table, i64 0, i64 %place
  %word = load i32, ptr %at, align 4
  %sum = add i32 %word, %x
  ret i32 %sum
}

; Loads once more behind a decision: by then fewer numbers are open.
define i32 @decides_and_loads(i32 %n, i32 %x) {
entry:
  %odd = and i32 %n, 1
  %even = icmp eq i32 %odd, 0
  br i1 %even, label %of_even, label %of_odd
of_even:
  %far = icmp ugt i32 %n, 5
  %more = select i1 %far, i32 3, i32 %x
  br label %end
of_odd:
  %above = icmp ugt i32 %x, 100
  br i1 %above, label %end, label %small
small:
  br label %end
end:
  %found = phi i32 [ %more, %of_even ], [ 1, %of_odd ], [ %x, %small ]
  %place = zext i32 %n to i64
  %at = getelementptr inbounds [8 x i32], ptr @table, i64 0, i64 %place
  %word = load i32, ptr %at, align 4
  %product = mul i32 %word, %found
  ret i32 %product
}

; Of more ways than two.
define i32 @switches(i32 %n, i32 %x) {
entry:
  switch i32 %n, label %other [
    i32 1, label %one
    i32 3, label %three
    i32 6, label %three
  ]
one:
  ret i32 %x
three:
  %sum = add i32 %x, %n
  ret i32 %sum
other:
  ret i32 0
}
