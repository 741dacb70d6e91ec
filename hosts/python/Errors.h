#pragma once

#include "cli/Command.h"
#include "formats/files/FileError.h"
#include "hosts/common/ParameterError.h"

#include <pybind11/pybind11.h>

namespace python {

/// Lets what the work throws come out as the exceptions of morvanex._errors, with the command's messages.
void TranslateErrors();

/// What is refused while options are read is a parameter's fault.
template <class Read>
auto ReadOptions(Read read) {
    try {
        return read();
    } catch (const formats::FileError &) {
        throw;
    } catch (const hosts::ParameterError &) {
        throw;
    } catch (const std::runtime_error &error) {
        throw cli::UsageError(error.what());
    }
}

} // namespace python
