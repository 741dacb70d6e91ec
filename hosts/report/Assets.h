#pragma once

namespace report {

/// The parts of every page that are files of their own: style.css, table.js and view.js.
extern const char *const styleSheet;
extern const char *const tableScript;
extern const char *const viewScript;

} // namespace report
