#pragma once

#include "ModelGuard.h"
#include "TemporaryFolder.h"
#include "formats/structures/StructureFile.h"

#include <gmock/gmock.h>

#include <string>

/// Reads small texts as structure files, and shows what became of them.
class StructureFixture : public testing::Test {
protected:
    /// Reads the text as a file of that name; fails the test where that throws.
    VARNO::Clump *Read(const std::string &text, const std::string &name = "model.pdb");
    /// The outline of what is read.
    std::string Outlined(const std::string &text, const std::string &name = "model.pdb");
    /// The error with which reading the text ends, without the folder; "none" where it does not. Nothing may
    /// have been added to the model then.
    std::string ErrorOf(const std::string &text, const std::string &name = "model.pdb");

    TemporaryFolder m_folder;
    ModelGuard m_guard;
    formats::StructureReport m_report;
};

/// The tree below a node on one line: "A: ALA1(N CA) GLY2(CA); A other: HOH301(O)".
std::string Outline(const VARNO::Compound *node);

/// All atoms below a node with everything they answer, one on a line.
std::string AtomList(VARNO::Compound *node);

/// The first node of that path of names below `node`.
VARNO::Compound *At(VARNO::Compound *node, std::initializer_list<std::string> path);
