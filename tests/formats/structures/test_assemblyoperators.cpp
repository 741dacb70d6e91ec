#include "formats/structures/AssemblyOperators.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace formats;
using testing::HasSubstr;

std::vector<AssemblyOperator> Read(const std::string &text) {
    ByteSource source("assembly.cif", text);
    return ReadAssemblyOperatorsFrom(source);
}

std::string ErrorOf(const std::string &text) {
    try {
        Read(text);
    } catch (const FileError &error) {
        return error.what();
    }
    return "read";
}

/// Half and quarter turns about z, and a shift.
std::string Text(const std::string &generators, const std::string &firstNumber = "1.0") {
    return R"(data_TEST
loop_
_pdbx_struct_assembly_gen.assembly_id
_pdbx_struct_assembly_gen.oper_expression
_pdbx_struct_assembly_gen.asym_id_list
)" + generators +
           R"(
loop_
_pdbx_struct_oper_list.id
_pdbx_struct_oper_list.type
_pdbx_struct_oper_list.matrix[1][1]
_pdbx_struct_oper_list.matrix[1][2]
_pdbx_struct_oper_list.matrix[1][3]
_pdbx_struct_oper_list.vector[1]
_pdbx_struct_oper_list.matrix[2][1]
_pdbx_struct_oper_list.matrix[2][2]
_pdbx_struct_oper_list.matrix[2][3]
_pdbx_struct_oper_list.vector[2]
_pdbx_struct_oper_list.matrix[3][1]
_pdbx_struct_oper_list.matrix[3][2]
_pdbx_struct_oper_list.matrix[3][3]
_pdbx_struct_oper_list.vector[3]
1 'identity operation' )" +
           firstNumber + R"( 0.0 0.0 0.0 0.0 1.0 0.0 0.0 0.0 0.0 1.0 0.0
2 'point symmetry' -1.0 0.0 0.0 10.0 0.0 -1.0 0.0 20.0 0.0 0.0 1.0 0.0
3 'point symmetry' 0.0 -1.0 0.0 5.0 1.0 0.0 0.0 6.0 0.0 0.0 1.0 0.0
P 'helical symmetry' 1.0 0.0 0.0 0.0 0.0 1.0 0.0 0.0 0.0 0.0 1.0 7.5
)";
}

TEST(AssemblyOperators, AreThoseOfTheFirstAssembly) {
    const std::vector<AssemblyOperator> operators = Read(Text("1 1,2 A,B\n2 1-3 A"));
    ASSERT_EQ(operators.size(), 2u);
    EXPECT_EQ(operators[0].rotation, (std::array<double, 9>{1, 0, 0, 0, 1, 0, 0, 0, 1}));
    EXPECT_EQ(operators[1].rotation, (std::array<double, 9>{-1, 0, 0, 0, -1, 0, 0, 0, 1}));
    EXPECT_EQ(operators[1].translation, (std::array<double, 3>{10, 20, 0}));
}

TEST(AssemblyOperators, RangesAndProductsAreMultipliedOut) {
    EXPECT_EQ(Read(Text("1 1-3 A")).size(), 3u);
    EXPECT_EQ(Read(Text("1 (1-3) A")).size(), 3u);
    const std::vector<AssemblyOperator> products = Read(Text("1 '(1,3)(P)' A"));
    ASSERT_EQ(products.size(), 2u);
    EXPECT_EQ(products[0].translation, (std::array<double, 3>{0, 0, 7.5}));
    EXPECT_EQ(products[1].rotation, (std::array<double, 9>{0, -1, 0, 1, 0, 0, 0, 0, 1}));
    EXPECT_EQ(products[1].translation, (std::array<double, 3>{5, 6, 7.5}));
}

TEST(AssemblyOperators, OnesThatSeveralChainsHaveCountOnce) {
    // Twice a half turn about one axis is no motion.
    EXPECT_EQ(Read(Text("1 1,2 A\n1 1,2 B\n1 '(2)(2)' C")).size(), 2u);
}

TEST(AssemblyOperators, WhatIsWrongIsNamed) {
    EXPECT_THAT(ErrorOf("data_X\n_cell.length_a 5\n"), HasSubstr("no _pdbx_struct_oper_list table"));
    EXPECT_THAT(ErrorOf("ATOM      1"), HasSubstr("assembly.cif: line 1"));
    EXPECT_THAT(ErrorOf(Text("1 1,9 A")), HasSubstr("names the operator '9'"));
    EXPECT_THAT(ErrorOf(Text("1 '(1,2' A")), HasSubstr("cannot be read as a list of operators"));
    EXPECT_THAT(ErrorOf(Text("1 1-2000000000 A")), HasSubstr("1-2000000000"));
    EXPECT_THAT(ErrorOf(Text("1 '(1-3)(1-3)(1-3)(1-3)(1-3)(1-3)(1-3)(1-3)(1-3)' A")),
                HasSubstr("more than 10000 operators"));
    EXPECT_THAT(ErrorOf(Text("1 1,2 A", "one")), HasSubstr("operator 1 of _pdbx_struct_oper_list: 'one'"));
    EXPECT_THAT(ErrorOf(Text("1 1,2 A", "nan")), HasSubstr("is not a number"));
    EXPECT_THAT(ErrorOf(Text("1 1,2 A", "2.0")), HasSubstr("its matrix is no rotation"));
    EXPECT_THAT(ErrorOf(Text("1 1,2 A", "-1.0")), HasSubstr("its matrix is no rotation"));
}

} // namespace
