#include "SyntheticModel.h"

#include <gtest/gtest.h>

#include <numbers>

using namespace placement;

TEST(Geometry, AMatrixGivesBackItsQuaternion) {
    std::mt19937 random(1);
    std::normal_distribution<double> normal;
    for (int i = 0; i < 200; ++i) {
        UnitQuaternion q{normal(random), normal(random), normal(random), normal(random)};
        // Half turns have w = 0, where only another component can divide.
        if (i % 4 == 0)
            q.w = 0;
        const Matrix m = MatrixOf(q);
        const UnitQuaternion back = QuaternionOf(m);
        EXPECT_GE(back.w, 0);
        EXPECT_NEAR(back.w * back.w + back.x * back.x + back.y * back.y + back.z * back.z, 1, 1e-12);
        const Matrix again = MatrixOf(back);
        for (std::size_t k = 0; k < 9; ++k)
            ASSERT_NEAR(m[k], again[k], 1e-12);
    }
}

TEST(Geometry, ARotationVectorTurnsRightHanded) {
    const Matrix quarter = RotationBy({0, 0, std::numbers::pi / 2});
    const Point p = quarter * Point{1, 0, 0};
    EXPECT_NEAR(p.x, 0, 1e-12);
    EXPECT_NEAR(p.y, 1, 1e-12);
    EXPECT_NEAR((RotationBy({1e-12, 0, 0}) * Point{0, 1, 0}).z, 1e-12, 1e-20);
}

TEST(Geometry, AnAngleIsThatOfTheRotation) {
    for (const double angle : {0.0, 1e-6, 0.5, 2.0, 3.1})
        EXPECT_NEAR(AngleOf(RotationBy({0, angle, 0})), angle, 1e-7) << angle;
    EXPECT_NEAR(AngleOf(RotationBy({0, 0, 4})), 2 * std::numbers::pi - 4, 1e-7);
}
