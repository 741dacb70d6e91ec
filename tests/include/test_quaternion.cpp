#include "Quaternion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

using namespace VARNO;

namespace {

Quaternion Of(double w, double x, double y, double z) {
    Quaternion q;
    q.Set(w, x, y, z);
    return q;
}

/// p + 2u x (u x p + wp), u and w from the normalised quaternion: the textbook rotation, without a matrix.
void ExpectRotated(const Quaternion &q, const Vertex &p, float tolerance) {
    const long double n = std::sqrt((long double)(q.w()) * q.w() + (long double)(q.x()) * q.x() +
                                    (long double)(q.y()) * q.y() + (long double)(q.z()) * q.z());
    const long double w = q.w() / n, u[] = {q.x() / n, q.y() / n, q.z() / n};
    const auto cross = [&u](const long double *v, int i) {
        return u[(i + 1) % 3] * v[(i + 2) % 3] - u[(i + 2) % 3] * v[(i + 1) % 3];
    };
    long double inner[3];
    const long double point[] = {p[0], p[1], p[2]};
    for (int i = 0; i < 3; ++i)
        inner[i] = cross(point, i) + w * point[i];
    const Vertex rotated = q * p;
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(rotated[std::size_t(i)], double(point[i] + 2 * cross(inner, i)), tolerance);
}

} // namespace

TEST(Quaternion, IsTheIdentityByDefault) {
    const Quaternion q;
    EXPECT_EQ(q.w(), 1);
    EXPECT_EQ(q.x(), 0);
    EXPECT_EQ(q.y(), 0);
    EXPECT_EQ(q.z(), 0);
    EXPECT_EQ(q * Vertex(1.25f, -2, 3e30f, true), Vertex(1.25f, -2, 3e30f, false));
}

TEST(Quaternion, KeepsTheNumbersItIsGiven) {
    const Quaternion q = Of(0.61, 0.1, -0.3, 7);
    EXPECT_EQ(q.w(), 0.61);
    EXPECT_EQ(q.x(), 0.1);
    EXPECT_EQ(q.y(), -0.3);
    EXPECT_EQ(q.z(), 7);
    const Quaternion copy = q;
    EXPECT_EQ(copy.z(), 7);
}

TEST(Quaternion, TakesHalfTheAngleAndWidensTheAxisBeforeTheProduct) {
    const double angle = 0.17453292519943295;
    Quaternion q;
    q.Set(angle, Vertex(0.6f, 0, 0.8f, false));
    EXPECT_EQ(q.w(), std::cos(angle / 2));
    EXPECT_EQ(q.x(), std::sin(angle / 2) * double(0.6f));
    EXPECT_EQ(q.y(), 0);
    EXPECT_EQ(q.z(), std::sin(angle / 2) * double(0.8f));
}

TEST(Quaternion, TurnsRightHanded) {
    Quaternion q;
    q.Set(std::numbers::pi / 2, Vertex(0, 0, 1, false));
    const Vertex turned = q * Vertex(10, 0, 0, false);
    EXPECT_NEAR(turned[0], 0, 1e-6);
    EXPECT_FLOAT_EQ(turned[1], 10);
    EXPECT_EQ(turned[2], 0);
}

TEST(Quaternion, RotatesAsTheTextbookSays) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> component(-1, 1);
    std::uniform_real_distribution<float> coordinate(-300, 300);
    for (int i = 0; i < 1000; ++i)
        ExpectRotated(Of(component(random), component(random), component(random), component(random)),
                      Vertex(coordinate(random), coordinate(random), coordinate(random), false), 1e-4f);
}

TEST(Quaternion, RotatesRigidlyWhateverItsLength) {
    const Vertex p(3, 4, 12, false);
    for (const Quaternion &q : {Of(0.87, 0.02, 0.33, -0.36), Of(100, 3, -5, 70), Of(1e-3, 2e-3, 0, 1e-3)}) {
        EXPECT_NEAR((q * p).SquaredLength(), 169, 1e-4);
        ExpectRotated(q, p, 1e-5f);
    }
}

TEST(Quaternion, OfFourZerosRotatesNothing) {
    EXPECT_EQ(Of(0, 0, 0, 0) * Vertex(1.1f, -2.2f, 3.3f, false), Vertex(1.1f, -2.2f, 3.3f, false));
}

TEST(Quaternion, HandsOutPositionsThatAreNotValid) {
    EXPECT_FALSE((Quaternion() * Vertex(1, 2, 3, true)).IsValid());
}

// The figures of these two tests were computed elsewhere, in double and rounded once to float.
TEST(Quaternion, GivesTheSameBitsEverywhere) {
    EXPECT_EQ(Of(0.6, 0.1, -0.3, 0.74) * Vertex(12.345f, -67.891f, 101.5f, false),
              Vertex(0x1.39ed64p+5f, -0x1.3b5b8p+5f, 0x1.b5a1a2p+6f, false));
    EXPECT_EQ(Of(0.93, 0, 0.36, -0.07) * Vertex(-0.1f, 250.77f, 3.3f, false),
              Vertex(0x1.167654p+5f, 0x1.f050bp+7f, -0x1.44542p+3f, false));
}

TEST(Quaternion, SumsFromLeftToRightWithoutContraction) {
    // The first row is 3/7, -2/7, 6/7: two large products cancel to their rounding error before z comes in.
    EXPECT_EQ((Of(2, 1, 1, 1) * Vertex(0x2p+60f, 0x3p+60f, 1, false))[0], 0x1.01b6dcp+7f);
    EXPECT_EQ((Of(2, 1, 1, 1) * Vertex(0x2p+50f, 0x3p+50f, 1, false))[0], 0x1.f6db6ep-1f);
}
