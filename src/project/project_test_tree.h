#pragma once

// Helpers for the tests of the project tree: a project system with a tree
// parsed from text.

#include "environment/system_macros.h"
#include "project/project_load_progress_interface.h"
#include "project/project_system.h"
#include "project/project_system_xml.h"
#include "project/standard_property_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

using Strings = std::vector<std::string>;

inline Strings sorted(Strings items) {
    std::sort(items.begin(), items.end());
    return items;
}

// The items with a blank (or another separator) between them, so that a long
// list compares with one literal.
inline std::string spaced(const Strings &items, const std::string &separator = " ") {
    std::string text;
    for (const std::string &item : items)
        text += (text.empty() ? "" : separator) + item;
    return text;
}

// The names of a list of property values or classes.
template <class List>
Strings namesOf(const List &list) {
    Strings names;
    for (const auto &item : list)
        names.push_back(item->name());
    return names;
}

// Made before the project system, which keeps its address.
struct TestMacroTable {
    SystemMacros systemMacros;
};

// A project system of class System (ProjectSystem or one derived from it)
// with a tree parsed from text.
template <class System>
class TestTree : public TestMacroTable, public System {
public:
    TestTree() : System(&systemMacros) {}
    using System::close;
    using System::findElementByName;
    using System::macros;
    using System::mapProjects;
    using System::propertyClasses;
    using System::solution;
    using System::trackingChanges;

    // Makes the tree of `text` the loaded solution, as if it had been read
    // from `fileName`.
    ProjectElement *load(const std::string &text, const std::string &fileName = "/work/s/s.tbp") {
        close();
        ProjectSystemXMLPP2 document(this, macros);
        EXPECT_TRUE(document.parse(text)) << document.errorText;
        solution = document.projectRoot();
        document.takeRoot();
        if (solution)
            solution->filePath = FilePath(fileName);
        mapProjects();
        trackingChanges = true;
        return solution;
    }

    // The first node of the given display name; the file stored under that
    // name; the property class of a save name.
    ProjectElement *node(const std::string &name) { return found(findElementByName(solution, name), name); }
    ProjectElement *file(const std::string &name) { return found(ProjectSystem::findFileByPath(solution, name), name); }
    PropertyClass *property(const std::string &name) { return found(propertyClasses.propertyClass(name), name); }

private:
    template <class T>
    static T *found(T *item, const std::string &name) {
        EXPECT_NE(item, nullptr) << name;
        return item;
    }
};

using TestProjectSystem = TestTree<ProjectSystem>;

// A project system with the standard property table, which every toolchain
// installs.
class StandardTestSystem : public TestProjectSystem {
public:
    ToolProperties toolProperties{propertyClasses};
};

// A load progress that records what it is told, one line an event.
class RecordingProgress : public ProjectLoadProgressInterface {
public:
    void beginTask(const std::string &text, int level) override {
        events.push_back("begin " + std::to_string(level) + " " + text);
        ++open;
    }
    void endTask() override {
        events.push_back("end");
        --open;
    }
    void message(const std::string &text) override { events.push_back("message " + text); }
    void warning(const std::string &text) override { events.push_back("warning " + text); }
    int depth() override { return open; }
    void setProgress(int done, int total) override {
        events.push_back(std::to_string(done) + "/" + std::to_string(total));
    }
    void processEvents() override { ++polls; }
    std::vector<std::string> collectedLines() override { return {}; }

    Strings events;
    int open = 0, polls = 0;
};
