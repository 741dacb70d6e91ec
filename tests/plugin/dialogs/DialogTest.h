#pragma once

#include "Parameters.h"
#include "solutions/Solution.h"

#include "Gui.h"
#include "Messages.h"
#include "ModelGuard.h"
#include "Scene.h"
#include "TemporaryFolder.h"

#include "Config.h"

#include <QApplication>
#include <QMetaMethod>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

/// A test that begins as the library does when it is loaded: parameters zero, no solutions, an empty model,
/// the configuration that the host ships, no window.
class DialogTest : public testing::Test {
protected:
    DialogTest() { VARNO::Config::SetUserFile(folder.File("varno.ini")); }
    ~DialogTest() override {
        Axis = TCount = top_size = 0;
        gammaStep = Step = 0;
        logging = restraints = false;
        em_fname = re_fname = QString();
        m_Target = m_Map = nullptr;
        m_Solid.clear();
        Solutions.clear();
        for (const char *name : {"StartFit", "SolutionsList", "Progress"})
            while (QWidget *window = FindWindow(name, false))
                delete window;
    }

    /// The user's own settings of the section "Morvanex".
    void Configure(const std::string &lines) { folder.Write("varno.ini", "[Morvanex]\n" + lines); }

    /// What was said on the warning channel, less what a platform without a window manager says of itself.
    std::vector<std::string> Warnings() const {
        std::vector<std::string> warnings = messages.Warnings();
        std::erase_if(warnings,
                      [](const std::string &text) { return text.starts_with("This plugin does not"); });
        return warnings;
    }

    TemporaryFolder folder;
    ModelGuard model;
    Messages messages;
};

/// A record with that score, turned by nothing and moved by (x, 0, 0).
inline SolutionScore Scored(double score, float x = 0) {
    SolutionScore solution;
    solution.score = score;
    solution.translation.setValue(x, 0, 0, false);
    return solution;
}

/// The names of a class's own methods of that type, in the order of its meta-object.
inline std::vector<std::string> MethodsOf(const QMetaObject &metaObject, QMetaMethod::MethodType type) {
    std::vector<std::string> names;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i)
        if (metaObject.method(i).methodType() == type)
            names.push_back(metaObject.method(i).methodSignature().toStdString());
    return names;
}

template <class Widget>
std::string TextOf(const Widget *widget) {
    return widget->text().toStdString();
}
