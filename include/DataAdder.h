#pragma once

#include "CheckPointer.h"
#include "Space.h"

namespace VARNO {

/// A batch of additions to the model, open for as long as the object lives. When it ends, subscribers hear of
/// everything that `DataMaker` made meanwhile, and that is still in the model, in one notice. T is the type
/// of the object that receives the additions, the root or a node below it.
///
/// Adding is refused while another batch is open or the root is read-only: test `MayAdd` before making
/// anything.
template <class T>
class DataAdder : public DataPointBase {
public:
    explicit DataAdder(T *receiver)
        : DataPointBase(nullptr, Publisher::Addition) {
        CheckPointer(receiver, "../../include/DataAdder", 78);
        Space *space = Space::instance();
        if (!receiver || space->IsReadOnly() || !space->Changes().Open(this))
            Refuse();
    }
    ~DataAdder() override { Space::instance()->Changes().Close(this); }

    bool MayAdd() const { return GetActionState() == Publisher::Addition; }
};

} // namespace VARNO
