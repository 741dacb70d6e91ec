#include <DataAdder.h>
#include <DataMaker.h>
#include <Space.h>

using namespace VARNO;

int main() {
    const DataAdder<Space> batch(Space::instance());
    Compound *clump = DataMaker::makeClump("1abc");
    return clump->GetName() == "1abc" && clump->GetParent() == Space::instance() ? 0 : 1;
}
