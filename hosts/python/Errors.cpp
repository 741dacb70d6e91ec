#include "Errors.h"

#include "CommonOptions.h"
#include "hosts/common/FitChecks.h"
#include "hosts/common/ParameterError.h"

namespace py = pybind11;

namespace python {

namespace {

void Raise(const char *type, const std::string &message) {
    const py::object exception = py::module_::import("morvanex._errors").attr(type);
    // Names of files need not be UTF-8.
    const auto text = py::reinterpret_steal<py::object>(
        PyUnicode_DecodeUTF8(message.data(), py::ssize_t(message.size()), "surrogateescape"));
    PyErr_SetObject(exception.ptr(), text.ptr());
}

void Translate(std::exception_ptr pointer) {
    try {
        if (pointer)
            std::rethrow_exception(pointer);
    } catch (const py::builtin_exception &error) {
        error.set_error();
    } catch (const hosts::ParameterError &error) {
        Raise("ParameterError", batch::OptionOf(error.Parameter()) + ": " + error.Problem());
    } catch (const cli::UsageError &error) {
        Raise("ParameterError", error.what());
    } catch (const formats::FileError &error) {
        Raise("FileError", error.what());
    } catch (const hosts::FitTooLong &error) {
        Raise("Error", std::string(error.what()) + "; force=True runs it.");
    } catch (const std::runtime_error &error) {
        Raise("Error", error.what());
    }
}

} // namespace

void TranslateErrors() {
    py::register_exception_translator(Translate);
}

} // namespace python
