// The built plug-in in a recording host: loading, the life before and after a frame, and whole renders held
// against the reference.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "Image.h"
#include "NaivePipeline.h"
#include "RecordingHost.h"

// Host indices of the plug-in's parameters.
enum PluginParam : std::size_t {
    kSourceIndex,
    kViewModeIndex,
    kBlurTypeIndex,
    kControlLayerIndex,
    kControlChannelIndex,
    kFocalPointIndex,
    kInFocusRangeIndex,
    kMaximumBlurIndex,
    kAspectRatioIndex,
    kInvertIndex,
    kConformIndex,
    kBlendIndex,
    kParamCount,
};

// The shared library, loaded as long as this lives.
class LoadedPlugin {
public:
    LoadedPlugin();
    ~LoadedPlugin();
    LoadedPlugin(const LoadedPlugin&) = delete;
    LoadedPlugin& operator=(const LoadedPlugin&) = delete;
    PF_EntryPoint entryPoint() const { return entry; }

private:
    void* library;
    PF_EntryPoint entry;
};

std::filesystem::path PluginLibrary();
std::filesystem::path PluginContents();

// The controls as the panel shows them.
struct PanelValues {
    int viewMode = 0;
    int blurType = 0;
    int channel = 4;
    double focalPoint = 0;
    double inFocusRange = 0;
    double maximumBlur = 10;
    double aspect = 0;
    bool invert = false;
    bool conform = true;
    double blend = 0;
};
std::ostream& operator<<(std::ostream& out, const PanelValues& values);

// The plug-in set up for rendering.
class PluginHost : public RecordingHost {
public:
    PluginHost();
    ~PluginHost();

    // Global, parameter and sequence set-up; the error that ends them, if any.
    PF_Err setUp();
    void set(const PanelValues& values);

private:
    LoadedPlugin plugin;
};

// What the plug-in is to render: the reference's frame of the same values, and in place of the reference's
// own mix the host's where the host mixes (`hostBlends`: source and output are of one size).
oracle::Image ExpectedFrame(const PanelValues& values, const RecordingHost& host, const oracle::Image& input,
                            const oracle::Image* control, bool hostBlends);
