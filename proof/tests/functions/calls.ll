; Calls, with numbers, addresses, arrays and structs.

define internal i32 @twice(i32 %a) {
  %result = shl i32 %a, 1
  ret i32 %result
}

define i32 @call_of_number(i32 %a) {
  %once = call i32 @twice(i32 %a)
  %again = tail call i32 @twice(i32 %once)
  %result = sub i32 %again, %a
  ret i32 %result
}

define internal { i64, i1 } @with_truth(i64 %a, i64 %b) {
  %less = icmp ult i64 %a, %b
  %sum = add i64 %a, %b
  %x = insertvalue { i64, i1 } poison, i64 %sum, 0
  %y = insertvalue { i64, i1 } %x, i1 %less, 1
  ret { i64, i1 } %y
}

define i64 @call_of_struct(i64 %a, i64 %b) {
  %pair = call { i64, i1 } @with_truth(i64 %a, i64 %b)
  %sum = extractvalue { i64, i1 } %pair, 0
  %less = extractvalue { i64, i1 } %pair, 1
  %result = select i1 %less, i64 %sum, i64 %b
  ret i64 %result
}

define internal i64 @of_array([2 x i64] %pair) {
  %x = extractvalue [2 x i64] %pair, 0
  %y = extractvalue [2 x i64] %pair, 1
  %result = sub i64 %x, %y
  ret i64 %result
}

define i64 @call_of_array(i64 %a, i64 %b) {
  %x = insertvalue [2 x i64] poison, i64 %a, 0
  %y = insertvalue [2 x i64] %x, i64 %b, 1
  %result = call i64 @of_array([2 x i64] %y)
  ret i64 %result
}

define internal void @fill(ptr %to, i32 %a, i1 %really) {
entry:
  br i1 %really, label %yes, label %no
yes:
  store i32 %a, ptr %to, align 4
  br label %no
no:
  ret void
}

; The caller goes on once for each path of the called one.
define i32 @call_of_address(i32 %a, i1 %really) {
  %x = alloca i32, align 4
  store i32 3, ptr %x, align 4
  call void @fill(ptr %x, i32 %a, i1 %really)
  %result = load i32, ptr %x, align 4
  ret i32 %result
}

define internal i1 @is_odd(i16 %a) {
  %odd = trunc i16 %a to i1
  ret i1 %odd
}

define internal i16 @next_even(i16 %a) {
  %odd = call i1 @is_odd(i16 %a)
  %one = zext i1 %odd to i16
  %result = add i16 %a, %one
  ret i16 %result
}

define i16 @call_of_calls(i16 %a) {
  %result = call i16 @next_even(i16 %a)
  ret i16 %result
}

define internal ptr @first_or_second(ptr %a, ptr %b, i1 %first) {
  %result = select i1 %first, ptr %a, ptr %b
  ret ptr %result
}

define i32 @call_that_returns_address(i32 %a, i1 %first) {
  %x = alloca i32, align 4
  %y = alloca i32, align 4
  store i32 %a, ptr %x, align 4
  store i32 9, ptr %y, align 4
  %chosen = call ptr @first_or_second(ptr %x, ptr %y, i1 %first)
  %result = load i32, ptr %chosen, align 4
  ret i32 %result
}

define internal i8 @with_memory_of_its_own(i8 %a, i1 %really) {
entry:
  %x = alloca i8, align 1
  store i8 1, ptr %x, align 1
  br i1 %really, label %yes, label %end
yes:
  store i8 %a, ptr %x, align 1
  br label %end
end:
  %result = load i8, ptr %x, align 1
  ret i8 %result
}

; The memory of one call is not that of the next.
define i8 @two_calls(i8 %a, i1 %b) {
  %one = call i8 @with_memory_of_its_own(i8 %a, i1 true)
  %two = call i8 @with_memory_of_its_own(i8 %a, i1 %b)
  %result = sub i8 %one, %two
  ret i8 %result
}

; Assembly that yields its operand: what keeps a number from being computed with early.
define i32 @kept_number(i32 %a) {
  %result = call i32 asm sideeffect "", "=r,0"(i32 %a)
  ret i32 %result
}
