#pragma once

#include "document/Document.h"

class QWidget;

namespace desktop {

/// What "Save as" writes: the selected map, else the selected molecules, else all molecules that are shown.
/// Empty where there is neither.
Document::Nodes ToBeSaved(const Document &document);

/// Writes the nodes to a file, a map as MRC, molecules as mmCIF or PDB by the file's name, and notes that
/// they are saved. Throws FileError.
void SaveTo(const std::string &file, const Document::Nodes &nodes, Document &document);

/// Asks for a file's name, and saves. Throws FileError.
void SaveAsAsked(QWidget *parent, Document &document);

} // namespace desktop
