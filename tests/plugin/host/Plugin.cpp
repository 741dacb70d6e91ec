#include "Plugin.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

namespace {

template <class Function>
void Resolve(void *library, const char *name, Function &function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    EXPECT_TRUE(function) << name;
}

} // namespace

Plugin::Plugin() {
    void *library = dlopen(MORVANEX_PLUGIN, RTLD_NOW | RTLD_NODELETE);
    if (!library) {
        ADD_FAILURE() << dlerror();
        return;
    }
    Resolve(library, "Execute0", Execute0);
    Resolve(library, "Cleanup", Cleanup);
    Resolve(library, "IsDone", IsDone);
}
