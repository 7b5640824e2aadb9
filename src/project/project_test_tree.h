#pragma once

// Helpers for the tests of the project tree: a project system with a tree
// parsed from text.

#include "environment/system_macros.h"
#include "project/project_load_progress_interface.h"
#include "project/project_system.h"
#include "project/project_system_xml.h"
#include "project/standard_property_table.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

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

    // The first node of the given display name.
    ProjectElement *node(const std::string &name) {
        ProjectElement *found = findElementByName(solution, name);
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

    // The property class of a save name.
    PropertyClass *property(const std::string &name) {
        PropertyClass *found = propertyClasses.propertyClass(name);
        EXPECT_NE(found, nullptr) << name;
        return found;
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
    }
    void endTask() override { events.push_back("end"); }
    void message(const std::string &text) override { events.push_back("message " + text); }
    void warning(const std::string &text) override { events.push_back("warning " + text); }
    int depth() override { return 0; }
    void setProgress(int, int) override {}
    void processEvents() override { ++polls; }
    std::vector<std::string> collectedLines() override { return {}; }

    std::vector<std::string> events;
    int polls = 0;
};
