/// A plug-in that does nothing and may be unmapped, as one of somebody else's may.

namespace {

bool done = true;

} // namespace

extern "C" void Execute0() {}

extern "C" bool *Cleanup() {
    return &done;
}

extern "C" bool IsDone() {
    return done;
}
