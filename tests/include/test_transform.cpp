#include "Transform.h"

#include <gtest/gtest.h>

using namespace VARNO;

namespace {

Quaternion QuarterTurnAboutZ() {
    Quaternion q;
    q.Set(1, 0, 0, 1);
    return q;
}

} // namespace

TEST(Transform, RotatesAboutTheFrameOriginThenTranslates) {
    const Transform t(QuarterTurnAboutZ(), Vertex(100, 200, 300, false));
    EXPECT_EQ(t * Vertex(1, 2, 3, false), Vertex(98, 201, 303, false));
}

TEST(Transform, OfTheIdentityOnlyTranslates) {
    EXPECT_EQ(Transform({}, {}) * Vertex(1.1f, 2.2f, 3.3f, false), Vertex(1.1f, 2.2f, 3.3f, false));
    EXPECT_EQ(Transform({}, Vertex(1, 1, 1, false)) * Vertex(1, 2, 3, false), Vertex(2, 3, 4, false));
}

TEST(Transform, OfFourZerosOnlyTranslates) {
    Quaternion zero;
    zero.Set(0, 0, 0, 0);
    EXPECT_EQ(Transform(zero, Vertex(5, 0, 0, false)) * Vertex(1, 2, 3, false), Vertex(6, 2, 3, false));
}

TEST(Transform, HandsOutPositionsThatAreNotValid) {
    EXPECT_FALSE((Transform({}, Vertex(0, 0, 0, true)) * Vertex(1, 2, 3, true)).IsValid());
}

TEST(Transform, RoundsTheRotatedPointToFloatBeforeItTranslatesInFloat) {
    Quaternion q;
    q.Set(0.6, 0.1, -0.3, 0.74);
    // Computed elsewhere; each coordinate comes out differently when it is rounded only once, at the end.
    EXPECT_EQ(Transform(q, Vertex(-57.6f, 20.92f, 62.77f, false)) * Vertex(-77.47f, 79.16f, 2, false),
              Vertex(-0x1.bfb204p+6f, -0x1.a2837cp+5f, -0x1.1d44p-3f, false));
}

TEST(Transform, MovesACoordinateByThatCoordinateOfTheTranslationAlone) {
    Quaternion q;
    q.Set(0.6, 0.1, -0.3, 0.74);
    const Vertex p(-77.47f, 79.16f, 2, false);
    const Vertex a = Transform(q, Vertex(1.1f, 2.2f, 3.3f, false)) * p;
    const Vertex b = Transform(q, Vertex(1.1f, -5e6f, 1e-6f, false)) * p;
    EXPECT_EQ(a[0], b[0]);
}
