#include "Vertex.h"

#include <gtest/gtest.h>

using namespace VARNO;

TEST(Vertex, IsTheOriginAndNotValidByDefault) {
    const Vertex v;
    EXPECT_EQ(v, Vertex(0, 0, 0, false));
    EXPECT_FALSE(v.IsValid());
}

TEST(Vertex, KeepsTheValidityItIsMadeWith) {
    const float xyz[] = {1, 2, 3};
    EXPECT_TRUE(Vertex(1, 2, 3, true).IsValid());
    EXPECT_FALSE(Vertex(1, 2, 3, false).IsValid());
    EXPECT_TRUE(Vertex(xyz, true).IsValid());
    EXPECT_FALSE(Vertex(xyz, false).IsValid());
    EXPECT_EQ(Vertex(xyz, false), Vertex(1, 2, 3, false));
}

TEST(Vertex, IsComparedByPositionAlone) {
    EXPECT_EQ(Vertex(1, 2, 3, true), Vertex(1, 2, 3, false));
}

TEST(Vertex, CopiesPositionAndValidity) {
    const Vertex valid(1, 2, 3, true);
    Vertex copy(valid);
    EXPECT_EQ(copy, valid);
    EXPECT_TRUE(copy.IsValid());
    copy = Vertex(4, 5, 6, false);
    EXPECT_EQ(copy, Vertex(4, 5, 6, false));
    EXPECT_FALSE(copy.IsValid());
}

TEST(Vertex, TakesComponentsFromAVectorAndKeepsItsOwnValidity) {
    Vertex valid(1, 2, 3, true), invalid(1, 2, 3, false);
    valid = Vector<float, 3>(4, 5, 6);
    invalid = Vector<float, 3>(4, 5, 6);
    EXPECT_EQ(valid, Vertex(4, 5, 6, false));
    EXPECT_TRUE(valid.IsValid());
    EXPECT_FALSE(invalid.IsValid());
}

TEST(Vertex, SetsPositionAndValidity) {
    Vertex v(1, 2, 3, true);
    v.setValue(4, 5, 6, false);
    EXPECT_EQ(v, Vertex(4, 5, 6, false));
    EXPECT_FALSE(v.IsValid());
    v.setValue(7, 8, 9, true);
    EXPECT_TRUE(v.IsValid());
}
