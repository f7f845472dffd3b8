; Loads, stores, addresses and copies: of the function's own memory, of a caller's and of tables.

%pair = type { i16, i64, [3 x i32] }

@words = private unnamed_addr constant [8 x i32] [i32 5, i32 -1, i32 5, i32 0, i32 5, i32 5, i32 -7, i32 8], align 4
@bytes = private unnamed_addr constant [6 x i8] c"\01\02\FF\02\02\80", align 1
@halves = private unnamed_addr constant [3 x i16] [i16 1, i16 -2, i16 1], align 2
@doubles = private unnamed_addr constant [4 x i64] [i64 1, i64 -2, i64 1, i64 4294967296], align 8
@rows = private unnamed_addr constant [3 x { i16, i8, i64 }] [{ i16, i8, i64 } { i16 1, i8 2, i64 3 }, { i16, i8, i64 } { i16 4, i8 5, i64 6 }, { i16, i8, i64 } { i16 7, i8 5, i64 9 }], align 8
@zeros = private unnamed_addr constant [4 x i32] zeroinitializer, align 4
@counter = internal global i32 7, align 4
@pointers = private unnamed_addr constant [3 x ptr] [ptr @words, ptr getelementptr inbounds (i8, ptr @words, i64 24), ptr @zeros], align 8
@text_a = private unnamed_addr constant [4 x i8] c"abc\00", align 1
@text_b = private unnamed_addr constant [4 x i8] c"xyz\00", align 1
@distances = private unnamed_addr constant [3 x i32] [i32 trunc (i64 sub (i64 ptrtoint (ptr @text_a to i64), i64 ptrtoint (ptr @distances to i64)) to i32), i32 trunc (i64 sub (i64 ptrtoint (ptr @text_b to i64), i64 ptrtoint (ptr @distances to i64)) to i32), i32 trunc (i64 sub (i64 ptrtoint (ptr @text_a to i64), i64 ptrtoint (ptr @distances to i64)) to i32)], align 4

declare ptr @llvm.load.relative.i64(ptr, i64)
declare void @llvm.memcpy.p0.p0.i64(ptr, ptr, i64, i1)
declare void @llvm.lifetime.start.p0(i64, ptr)
declare void @llvm.lifetime.end.p0(i64, ptr)

define i32 @own_word(i32 %a) {
  %x = alloca i32, align 4
  call void @llvm.lifetime.start.p0(i64 4, ptr %x)
  store i32 %a, ptr %x, align 4
  %result = load i32, ptr %x, align 4
  call void @llvm.lifetime.end.p0(i64 4, ptr %x)
  ret i32 %result
}

; Four bytes of a word of eight, from its middle.
define i32 @part_of_word(i64 %a) {
  %x = alloca i64, align 8
  store i64 %a, ptr %x, align 8
  %middle = getelementptr inbounds i8, ptr %x, i64 3
  %result = load i32, ptr %middle, align 1
  ret i32 %result
}

define i64 @words_as_one(i16 %a, i8 %b, i32 %c, i8 %d) {
  %x = alloca i64, align 8
  store i16 %a, ptr %x, align 8
  %at_2 = getelementptr inbounds i8, ptr %x, i64 2
  store i8 %b, ptr %at_2, align 1
  %at_3 = getelementptr inbounds i8, ptr %x, i64 3
  store i32 %c, ptr %at_3, align 1
  %at_7 = getelementptr inbounds i8, ptr %x, i64 7
  store i8 %d, ptr %at_7, align 1
  %result = load i64, ptr %x, align 8
  ret i64 %result
}

; Each store covers a part of the one before.
define i64 @stores_that_overlap(i64 %a, i32 %b, i16 %c, i1 %d) {
  %x = alloca i64, align 8
  store i64 %a, ptr %x, align 8
  %at_2 = getelementptr inbounds i8, ptr %x, i64 2
  store i32 %b, ptr %at_2, align 2
  %at_5 = getelementptr inbounds i8, ptr %x, i64 5
  store i16 %c, ptr %at_5, align 1
  %at_3 = getelementptr inbounds i8, ptr %x, i64 3
  store i1 %d, ptr %at_3, align 1
  %result = load i64, ptr %x, align 8
  ret i64 %result
}

define i1 @truth_in_memory(i1 %a) {
  %x = alloca i8, align 1
  store i1 %a, ptr %x, align 1
  %result = load i1, ptr %x, align 1
  ret i1 %result
}

define i64 @struct_parts(i16 %a, i64 %b, i32 %c, i32 %place) {
  %x = alloca %pair, align 8
  %second = getelementptr inbounds %pair, ptr %x, i32 0, i32 1
  %third = getelementptr inbounds %pair, ptr %x, i64 0, i32 2, i64 1
  store i16 %a, ptr %x, align 8
  store i64 %b, ptr %second, align 8
  store i32 %c, ptr %third, align 4
  %first = load i16, ptr %x, align 8
  %wide = zext i16 %first to i64
  %middle = load i64, ptr %second, align 8
  %last = load i32, ptr %third, align 4
  %wide_last = sext i32 %last to i64
  %sum = add i64 %wide, %middle
  %result = xor i64 %sum, %wide_last
  ret i64 %result
}

; A caller's memory: words that overlap, in an order in which each is loaded first for a part.
define i64 @overlaps_of_a_caller(ptr %buffer) {
  %byte = load i8, ptr %buffer, align 1
  %word = load i32, ptr %buffer, align 4
  %at_3 = getelementptr inbounds i8, ptr %buffer, i64 3
  %half = load i16, ptr %at_3, align 1
  %long = load i64, ptr %buffer, align 8
  %again = load i8, ptr %at_3, align 1
  %byte_64 = zext i8 %byte to i64
  %word_64 = zext i32 %word to i64
  %half_64 = zext i16 %half to i64
  %again_64 = zext i8 %again to i64
  %a = shl i64 %byte_64, 1
  %b = add i64 %a, %word_64
  %c = xor i64 %b, %half_64
  %d = sub i64 %c, %long
  %e = add i64 %d, %again_64
  ret i64 %e
}

; The byte of a word that was stored into lies between bytes that the caller has put there.
define i32 @store_into_a_caller(ptr %buffer, i8 %a) {
  %at_2 = getelementptr inbounds i8, ptr %buffer, i64 2
  store i8 %a, ptr %at_2, align 1
  %word = load i32, ptr %buffer, align 4
  %at_8 = getelementptr inbounds i8, ptr %buffer, i64 8
  store i32 %word, ptr %at_8, align 4
  %at_10 = getelementptr inbounds i8, ptr %buffer, i64 10
  store i16 513, ptr %at_10, align 1
  ret i32 %word
}

define i32 @volatile_words(ptr %buffer, i32 %a) {
  store volatile i32 %a, ptr %buffer, align 4
  %at_4 = getelementptr inbounds i8, ptr %buffer, i64 4
  %result = load volatile i32, ptr %at_4, align 4
  ret i32 %result
}

define i32 @atomic_words(ptr %buffer, i32 %a) {
  store atomic i32 %a, ptr %buffer release, align 4
  %result = load atomic i32, ptr %buffer monotonic, align 4
  ret i32 %result
}

define i64 @address_difference(i64 %a) {
  %x = alloca [8 x i32], align 4
  %few = and i64 %a, 7
  %place = getelementptr inbounds [8 x i32], ptr %x, i64 0, i64 %few
  %end = getelementptr inbounds i8, ptr %x, i64 32
  %start_number = ptrtoint ptr %place to i64
  %end_number = ptrtoint ptr %end to i64
  %result = sub i64 %end_number, %start_number
  ret i64 %result
}

define i1 @addresses_compared(i64 %a, i64 %b) {
  %x = alloca [8 x i32], align 4
  %few = and i64 %a, 7
  %few_b = and i64 %b, 7
  %place = getelementptr inbounds i32, ptr %x, i64 %few
  %other = getelementptr inbounds i32, ptr %x, i64 %few_b
  %less = icmp ult ptr %place, %other
  %equal = icmp eq ptr %place, %other
  %differs = icmp ne ptr %place, %other
  %null = icmp eq ptr %place, null
  %not_null = icmp ne ptr %place, null
  %p = select i1 %less, i1 %equal, i1 %differs
  %q = xor i1 %p, %null
  %r = and i1 %q, %not_null
  ret i1 %r
}

define i32 @table_of_words(i32 %a) {
  %few = and i32 %a, 7
  %place = zext nneg i32 %few to i64
  %at = getelementptr inbounds [8 x i32], ptr @words, i64 0, i64 %place
  %result = load i32, ptr %at, align 4
  ret i32 %result
}

define i8 @table_of_bytes(i64 %a) {
  %few = urem i64 %a, 6
  %at = getelementptr inbounds i8, ptr @bytes, i64 %few
  %result = load i8, ptr %at, align 1
  ret i8 %result
}

define i16 @table_of_halves(i32 %a) {
  %few = urem i32 %a, 3
  %at = getelementptr inbounds [3 x i16], ptr @halves, i64 0, i32 %few
  %result = load i16, ptr %at, align 2
  ret i16 %result
}

define i64 @table_of_doubles(i16 %a) {
  %few = and i16 %a, 3
  %at = getelementptr inbounds i64, ptr @doubles, i16 %few
  %result = load i64, ptr %at, align 8
  ret i64 %result
}

; Rows of 16 bytes: the words of one column only are looked at.
define i8 @table_of_rows(i32 %a) {
  %few = urem i32 %a, 3
  %place = zext i32 %few to i64
  %at = getelementptr inbounds { i16, i8, i64 }, ptr @rows, i64 %place, i32 1
  %result = load i8, ptr %at, align 2
  ret i8 %result
}

define i32 @table_of_zeros(i64 %a) {
  %few = and i64 %a, 3
  %at = getelementptr inbounds i32, ptr @zeros, i64 %few
  %result = load i32, ptr %at, align 4
  ret i32 %result
}

; Bytes of the words of a table: at any place.
define i16 @table_by_halves(i64 %a) {
  %few = and i64 %a, 15
  %distance = shl i64 %few, 1
  %at = getelementptr inbounds i8, ptr @words, i64 %distance
  %result = load i16, ptr %at, align 2
  ret i16 %result
}

define i32 @table_of_addresses(i64 %a) {
  %few = urem i64 %a, 3
  %at = getelementptr inbounds [3 x ptr], ptr @pointers, i64 0, i64 %few
  %address = load ptr, ptr %at, align 8
  %result = load i32, ptr %address, align 4
  ret i32 %result
}

define i8 @table_of_distances(i64 %a) {
  %few = urem i64 %a, 3
  %distance = shl i64 %few, 2
  %text = call ptr @llvm.load.relative.i64(ptr @distances, i64 %distance)
  %result = load i8, ptr %text, align 1
  ret i8 %result
}

define i32 @constant_at_known_place() {
  %at = getelementptr inbounds i8, ptr @words, i64 26
  %result = load i32, ptr %at, align 1
  ret i32 %result
}

define i32 @copy_of_a_table(i32 %a) {
  %x = alloca [8 x i32], align 4
  call void @llvm.memcpy.p0.p0.i64(ptr %x, ptr @words, i64 32, i1 false)
  %at_4 = getelementptr inbounds i8, ptr %x, i64 4
  %at_24 = getelementptr inbounds i8, ptr %x, i64 24
  store i32 %a, ptr %at_4, align 4
  %one = load i32, ptr %at_4, align 4
  %two = load i32, ptr %at_24, align 4
  %result = add i32 %one, %two
  ret i32 %result
}

; From the middle of a word to the middle of a word.
define i64 @copy_of_parts(i64 %a, i64 %b) {
  %x = alloca i64, align 8
  %y = alloca i64, align 8
  store i64 %a, ptr %x, align 8
  store i64 %b, ptr %y, align 8
  %from = getelementptr inbounds i8, ptr %x, i64 1
  %to = getelementptr inbounds i8, ptr %y, i64 2
  call void @llvm.memcpy.p0.p0.i64(ptr %to, ptr %from, i64 3, i1 false)
  %result = load i64, ptr %y, align 8
  ret i64 %result
}

; What is stored behind a copy is not undone by it, nor what lies beside it.
define i32 @copy_to_a_caller(ptr %buffer, i64 %a, i32 %b) {
  %x = alloca i64, align 8
  store i64 %a, ptr %x, align 8
  store i64 %a, ptr %buffer, align 8
  %to = getelementptr inbounds i8, ptr %buffer, i64 6
  call void @llvm.memcpy.p0.p0.i64(ptr %to, ptr %x, i64 8, i1 false)
  %at_12 = getelementptr inbounds i8, ptr %buffer, i64 12
  store i32 %b, ptr %at_12, align 4
  %at_4 = getelementptr inbounds i8, ptr %buffer, i64 4
  %result = load i32, ptr %at_4, align 4
  ret i32 %result
}

define i32 @copy_of_stored_and_constant(i8 %a) {
  %x = alloca i32, align 4
  %at_1 = getelementptr inbounds i8, ptr @counter, i64 1
  store i8 %a, ptr %at_1, align 1
  call void @llvm.memcpy.p0.p0.i64(ptr %x, ptr @counter, i64 4, i1 false)
  %result = load i32, ptr %x, align 4
  store i32 7, ptr @counter, align 4
  ret i32 %result
}

define i32 @copy_of_nothing(i32 %a) {
  %x = alloca i32, align 4
  store i32 %a, ptr %x, align 4
  call void @llvm.memcpy.p0.p0.i64(ptr %x, ptr @words, i64 0, i1 false)
  %result = load i32, ptr %x, align 4
  ret i32 %result
}

define void @stores_alone(ptr %buffer, i64 %a, i1 %b) {
  br i1 %b, label %yes, label %end
yes:
  store i64 %a, ptr %buffer, align 8
  br label %end
end:
  ret void
}

define i32 @address_in_memory(i32 %a, i1 %b) {
  %x = alloca i32, align 4
  %y = alloca i32, align 4
  %place = alloca [2 x ptr], align 8
  store i32 %a, ptr %x, align 4
  store i32 6, ptr %y, align 4
  %second = getelementptr inbounds i8, ptr %place, i64 8
  store ptr %x, ptr %place, align 8
  store ptr %y, ptr %second, align 8
  %at = select i1 %b, ptr %place, ptr %second
  %address = load ptr, ptr %at, align 8
  %result = load i32, ptr %address, align 4
  ret i32 %result
}
