#include <Quaternion.h>
#include <Transform.h>

int main() {
    VARNO::Quaternion halfTurn;
    halfTurn.Set(0, 0, 0, 1);
    const VARNO::Vertex moved = VARNO::Transform(halfTurn, {1, 0, 0, true}) * VARNO::Vertex(1, 2, 3, true);
    return moved[0] == 0 && moved[1] == -2 && moved[2] == 3 ? 0 : 1;
}
