; Vectors, arrays and structs as values.

define i32 @insert_and_extract(i32 %a, i32 %b) {
  %x = insertelement <4 x i32> poison, i32 %a, i64 0
  %y = insertelement <4 x i32> %x, i32 %b, i64 1
  %z = insertelement <4 x i32> %y, i32 77, i64 3
  %one = extractelement <4 x i32> %z, i64 1
  %two = extractelement <4 x i32> %z, i64 0
  %three = extractelement <4 x i32> %z, i64 3
  %sum = sub i32 %one, %two
  %result = xor i32 %sum, %three
  ret i32 %result
}

define i64 @vectors_of_memory(ptr %buffer, i32 %a) {
  %pair = load <2 x i32>, ptr %buffer, align 4
  %wide = shufflevector <2 x i32> %pair, <2 x i32> poison, <4 x i32> <i32 1, i32 0, i32 poison, i32 poison>
  %whole = insertelement <4 x i32> %wide, i32 %a, i64 2
  %full = shufflevector <4 x i32> %whole, <4 x i32> <i32 1, i32 2, i32 3, i32 4>, <4 x i32> <i32 7, i32 2, i32 1, i32 0>
  %at_0 = extractelement <4 x i32> %full, i64 0
  %at_1 = extractelement <4 x i32> %full, i64 1
  %at_2 = extractelement <4 x i32> %full, i64 2
  %sum = add i32 %at_0, %at_1
  %more = xor i32 %sum, %at_2
  %result = zext i32 %more to i64
  %to = getelementptr inbounds i8, ptr %buffer, i64 8
  store <2 x i32> %pair, ptr %to, align 4
  ret i64 %result
}

define i32 @sums_of_vectors(i32 %a, i32 %b) {
  %x = insertelement <2 x i32> poison, i32 %a, i64 0
  %y = insertelement <2 x i32> %x, i32 %b, i64 1
  %z = mul <2 x i32> %y, <i32 3, i32 -5>
  %w = add <2 x i32> %z, %y
  %one = extractelement <2 x i32> %w, i64 0
  %two = extractelement <2 x i32> %w, i64 1
  %result = xor i32 %one, %two
  ret i32 %result
}

define i4 @vector_of_truths(i32 %a, i32 %b) {
  %x = insertelement <4 x i32> <i32 1, i32 -1, i32 poison, i32 poison>, i32 %a, i64 2
  %y = insertelement <4 x i32> %x, i32 %b, i64 3
  %frozen = freeze <4 x i32> %y
  %less = icmp slt <4 x i32> %frozen, <i32 -5, i32 0, i32 9, i32 -2147483647>
  %bits = bitcast <4 x i1> %less to i4
  ret i4 %bits
}

define i4 @vector_unequal(i32 %a, i32 %b) {
  %x = insertelement <4 x i32> <i32 1, i32 -1, i32 poison, i32 poison>, i32 %a, i64 2
  %y = insertelement <4 x i32> %x, i32 %b, i64 3
  %differs = icmp ne <4 x i32> %y, <i32 1, i32 0, i32 -1, i32 0>
  %bits = bitcast <4 x i1> %differs to i4
  ret i4 %bits
}

define i1 @any_of_four(i32 %a, i32 %b) {
  %x = insertelement <4 x i32> <i32 1, i32 -1, i32 poison, i32 poison>, i32 %a, i64 2
  %y = insertelement <4 x i32> %x, i32 %b, i64 3
  %equal = icmp eq <4 x i32> %y, <i32 2, i32 2, i32 3, i32 4>
  %bits = bitcast <4 x i1> %equal to i4
  %some = icmp ne i4 %bits, 0
  ret i1 %some
}

define i64 @vector_as_number(i32 %a, i32 %b) {
  %x = insertelement <2 x i32> poison, i32 %a, i64 0
  %y = insertelement <2 x i32> %x, i32 %b, i64 1
  %result = bitcast <2 x i32> %y to i64
  ret i64 %result
}

define i64 @struct_as_value(i64 %a, i1 %b) {
  %x = insertvalue { i64, i1 } poison, i64 %a, 0
  %y = insertvalue { i64, i1 } %x, i1 %b, 1
  %number = extractvalue { i64, i1 } %y, 0
  %truth = extractvalue { i64, i1 } %y, 1
  %wide = sext i1 %truth to i64
  %result = xor i64 %number, %wide
  ret i64 %result
}
