; Functions whose calls may do what is not defined: the executor must say when.

@table = private unnamed_addr constant [4 x i32] [i32 1, i32 2, i32 3, i32 9], align 4
@column = private unnamed_addr constant [2 x { i32, i8 }] [{ i32, i8 } { i32 1, i8 2 }, { i32, i8 } { i32 3, i8 4 }], align 4
@loose = private unnamed_addr constant [8 x i8] c"12345678", align 1

declare i32 @llvm.ctlz.i32(i32, i1)
declare i32 @llvm.cttz.i32(i32, i1)
declare void @llvm.memcpy.p0.p0.i64(ptr, ptr, i64, i1)

define i32 @load_at(ptr %buffer, i64 %place) {
  %at = getelementptr i8, ptr %buffer, i64 %place
  %result = load i32, ptr %at, align 1
  ret i32 %result
}

define i32 @load_in_table(i64 %place) {
  %at = getelementptr i32, ptr @table, i64 %place
  %result = load i32, ptr %at, align 4
  ret i32 %result
}

define i32 @load_of_null() {
  %result = load i32, ptr null, align 4
  ret i32 %result
}

define void @store_at_3(ptr %buffer) {
  %at = getelementptr i8, ptr %buffer, i64 3
  store i32 1, ptr %at, align 1
  ret void
}

define void @store_at_13(ptr %buffer) {
  %at = getelementptr i8, ptr %buffer, i64 13
  store i32 1, ptr %at, align 1
  ret void
}

define void @store_in_front(ptr %buffer) {
  %at = getelementptr i8, ptr %buffer, i64 -1
  store i8 1, ptr %at, align 1
  ret void
}

define void @store_to_table() {
  store i32 1, ptr @table, align 4
  ret void
}

define void @store_to_null() {
  store i32 1, ptr null, align 4
  ret void
}

define void @copy_of_17(ptr %buffer) {
  %x = alloca [32 x i8], align 1
  call void @llvm.memcpy.p0.p0.i64(ptr %x, ptr %buffer, i64 17, i1 false)
  ret void
}

define void @copy_of_16(ptr %buffer) {
  %x = alloca [16 x i8], align 1
  call void @llvm.memcpy.p0.p0.i64(ptr %x, ptr %buffer, i64 16, i1 false)
  ret void
}

define void @copy_to_15(ptr %buffer) {
  %x = alloca [15 x i8], align 1
  call void @llvm.memcpy.p0.p0.i64(ptr %x, ptr %buffer, i64 16, i1 false)
  ret void
}

define void @copy_beside_itself(ptr %buffer) {
  %at = getelementptr i8, ptr %buffer, i64 4
  call void @llvm.memcpy.p0.p0.i64(ptr %at, ptr %buffer, i64 5, i1 false)
  ret void
}

define ptr @inbounds_at(ptr %buffer, i64 %place) {
  %at = getelementptr inbounds i8, ptr %buffer, i64 %place
  ret ptr %at
}

define ptr @inbounds_words(ptr %buffer, i64 %place) {
  %at = getelementptr inbounds i32, ptr %buffer, i64 %place
  ret ptr %at
}

define i32 @aligned_at(ptr %buffer, i64 %place) {
  %few = and i64 %place, 7
  %at = getelementptr i8, ptr %buffer, i64 %few
  %result = load i32, ptr %at, align 4
  ret i32 %result
}

define void @aligned_store_at_8(ptr %buffer) {
  %at = getelementptr i8, ptr %buffer, i64 8
  store i32 0, ptr %at, align 8
  ret void
}

define void @aligned_store_at_4(ptr %buffer) {
  %at = getelementptr i8, ptr %buffer, i64 4
  store i32 0, ptr %at, align 8
  ret void
}

define i32 @aligned_in_loose_table() {
  %result = load i32, ptr @loose, align 4
  ret i32 %result
}

define i32 @aligned_beyond_the_buffer(ptr %buffer) {
  %result = load i32, ptr %buffer, align 32
  ret i32 %result
}

define i32 @aligned_own_memory() {
  %x = alloca i32, align 2
  store i32 1, ptr %x, align 4
  ret i32 1
}

define i8 @load_with_range(ptr %buffer) {
  %result = load i8, ptr %buffer, align 1, !range !0
  ret i8 %result
}

define i8 @load_with_range_around(ptr %buffer) {
  %result = load i8, ptr %buffer, align 1, !range !1
  ret i8 %result
}

define i32 @table_with_range(i64 %place) {
  %few = and i64 %place, 3
  %at = getelementptr inbounds i32, ptr @table, i64 %few
  %result = load i32, ptr %at, align 4, !range !2
  ret i32 %result
}

define i32 @table_with_range_where_it_holds(i64 %place) {
  %few = and i64 %place, 1
  %at = getelementptr inbounds i32, ptr @table, i64 %few
  %result = load i32, ptr %at, align 4, !range !2
  ret i32 %result
}

define i32 @noundef_of_nothing() {
  %x = alloca i32, align 4
  %result = load i32, ptr %x, align 4, !noundef !3
  ret i32 %result
}

define i32 @noundef_of_half_a_word(i16 %a) {
  %x = alloca i32, align 4
  store i16 %a, ptr %x, align 4
  %result = load i32, ptr %x, align 4, !noundef !3
  ret i32 %result
}

define i32 @noundef_of_a_word(i32 %a) {
  %x = alloca i32, align 4
  store i32 %a, ptr %x, align 4
  %result = load i32, ptr %x, align 4, !noundef !3
  ret i32 %result
}

define internal i32 @wants_meaning(i32 noundef %a) {
  ret i32 %a
}

define i32 @argument_of_nothing(i1 %really) {
entry:
  br i1 %really, label %yes, label %no
yes:
  %result = call i32 @wants_meaning(i32 poison)
  ret i32 1
no:
  %fine = call i32 @wants_meaning(i32 5)
  ret i32 2
}

define internal i32 @wants_words(ptr nonnull align 4 dereferenceable(8) %a) {
  ret i32 1
}

define i32 @argument_too_small() {
  %x = alloca i32, align 4
  %result = call i32 @wants_words(ptr %x)
  ret i32 %result
}

define i32 @argument_null() {
  %result = call i32 @wants_words(ptr null)
  ret i32 %result
}

define i32 @argument_not_aligned() {
  %x = alloca [4 x i32], align 4
  %at = getelementptr i8, ptr %x, i64 2
  %result = call i32 @wants_words(ptr %at)
  ret i32 %result
}

define i32 @argument_right() {
  %x = alloca [2 x i32], align 4
  %result = call i32 @wants_words(ptr %x)
  ret i32 %result
}

define noundef i32 @returns_nothing(i1 %really) {
  %x = select i1 %really, i32 poison, i32 1
  ret i32 %x
}

define range(i32 -1, 1) i32 @returns_in_range(i32 %a) {
  ret i32 %a
}

define range(i32 0, 2) i32 @returns_truth(i1 %a) {
  %result = zext i1 %a to i32
  ret i32 %result
}

define i32 @branch_on_nothing(i1 %really) {
entry:
  br i1 %really, label %asked, label %no
asked:
  br i1 poison, label %no, label %yes
yes:
  ret i32 1
no:
  ret i32 2
}

define i32 @switch_on_nothing() {
entry:
  %x = alloca i32, align 4
  %nothing = load i32, ptr %x, align 4
  %more = add i32 %nothing, 1
  switch i32 %more, label %no [ i32 1, label %yes ]
yes:
  ret i32 1
no:
  ret i32 2
}

define i32 @divided_by_nothing(i32 %a) {
  %result = udiv i32 %a, poison
  ret i32 %result
}

define i32 @load_from_nowhere() {
  %x = alloca ptr, align 8
  %address = load ptr, ptr %x, align 8
  %result = load i32, ptr %address, align 4
  ret i32 %result
}

define i32 @store_to_nowhere() {
  %x = alloca ptr, align 8
  %address = load ptr, ptr %x, align 8
  store i32 1, ptr %address, align 4
  ret i32 1
}

define i32 @copy_to_nowhere() {
  %x = alloca ptr, align 8
  %address = load ptr, ptr %x, align 8
  call void @llvm.memcpy.p0.p0.i64(ptr %address, ptr @table, i64 4, i1 false)
  ret i32 1
}

; Nothing is decided by it.
define i32 @nothing_that_is_not_used(i32 %a) {
  %nothing = add i32 poison, %a
  %x = alloca i32, align 4
  store i32 %nothing, ptr %x, align 4
  ret i32 %a
}

define i32 @reached(i32 %a) {
entry:
  %five = icmp eq i32 %a, 5
  br i1 %five, label %never, label %end
never:
  unreachable
end:
  ret i32 1
}

define i32 @leading_zeros_of_not_0(i32 %a) {
  %result = call i32 @llvm.ctlz.i32(i32 %a, i1 true)
  ret i32 %result
}

define i32 @trailing_zeros_of_not_0(i32 %a) {
  %result = call i32 @llvm.cttz.i32(i32 %a, i1 true)
  ret i32 %result
}

; The row's third word of a table of rows of 8 bytes: its padding has never been written.
define i32 @column_that_is_not_there(i64 %place) {
  %few = and i64 %place, 1
  %at = getelementptr inbounds { i32, i8 }, ptr @column, i64 %few, i32 1
  %result = load i32, ptr %at, align 4, !noundef !3
  ret i32 %result
}

define i32 @faults_for_0(i32 %a) {
entry:
  %zero = icmp eq i32 %a, 0
  br i1 %zero, label %fault, label %end
fault:
  call void asm sideeffect "brk #0xF004", ""()
  unreachable
end:
  ret i32 %a
}

!0 = !{i8 3, i8 7}
!1 = !{i8 -2, i8 2}
!2 = !{i32 1, i32 4}
!3 = !{}
