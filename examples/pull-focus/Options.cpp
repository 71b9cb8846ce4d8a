#include "Options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <vector>

namespace {

struct Range {
    int low;
    int high;

    std::string text() const { return std::to_string(low) + ".." + std::to_string(high); }
};

constexpr Range kPercent{0, 100};
constexpr Range kThreads{1, 256};

CLI::Validator Within(Range range) {
    const auto complaint = [range](const std::string& text) -> std::string {
        char* end = nullptr;
        const double value = std::strtod(text.c_str(), &end);
        if (end == text.c_str() || *end != '\0') return "\"" + text + "\" is not a number";
        if (value >= range.low && value <= range.high) return {};
        return text + " is outside the range " + range.text();
    };
    return {complaint, ""};
}

std::string Listed(const std::vector<std::string>& items) {
    return CLI::detail::join(items, "|");
}

// Replaces the name of an item by its number, in any case of letters.
CLI::Validator ItemOf(const std::vector<std::string>& items) {
    const auto toNumber = [items](std::string& text) -> std::string {
        const auto found = std::ranges::find(items, CLI::ignore_case(text),
                                             [](const std::string& item) { return CLI::ignore_case(item); });
        if (found == items.end()) return "\"" + text + "\" is none of " + Listed(items);
        text = std::to_string(found - items.begin());
        return {};
    };
    return {toNumber, "", ""};
}

void AddPopup(CLI::App& app, const std::string& name, int& item, const std::vector<std::string>& items,
              const std::string& description) {
    app.add_option(name, item, description)
        ->transform(ItemOf(items))
        ->type_name(Listed(items))
        ->default_str(items[static_cast<std::size_t>(item)]);
}

void AddSlider(CLI::App& app, const std::string& name, float& value, Range range,
               const std::string& description) {
    app.add_option(name, value, description)
        ->check(Within(range))
        ->type_name(range.text())
        ->capture_default_str();
}

// The host's arithmetic: the slider's value times 0.01, formed in double precision.
void AddPercent(CLI::App& app, const std::string& name, float& fraction, const std::string& description) {
    app.add_option_function<float>(
           name, [&fraction](float percent) { fraction = static_cast<float>(percent * 0.01); },
           description + ", percent")
        ->check(Within(kPercent))
        ->type_name(kPercent.text())
        ->default_str("0");
}

void AddControlFile(CLI::App& app, ControlFile& control) {
    app.add_option_function<std::string>(
           "CONTROL",
           [&control](const std::string& text) { control.file = pictures::parseSelectedPicture(text); },
           "The control layer: what lies at the focal point stays sharp; a channel of it as depth.exr:Z")
        ->required()
        ->type_name("");
    app.add_option_function<std::string>(
           "--control-range",
           [&control](const std::string& text) {
               control.range = pictures::parseDepthRange(text);
               if (!control.range)
                   throw CLI::ValidationError(
                       "--control-range",
                       "\"" + text + "\" is no range; give it as 2.5:40 or 2.5:40:reciprocal");
           },
           "Depths in the control layer that become white and black, as 2.5:40; 2.5:40:reciprocal in even "
           "steps of 1 / depth")
        ->type_name("NEAR:FAR");
}

void AddControls(CLI::App& app, RenderInputs& inputs) {
    AddPopup(app, "--view-mode", inputs.viewMode, {"Normal", "Focus"},
             "The picture, or the map of what is out of focus");
    AddPopup(app, "--blur-type", inputs.blurType, {"Coarse", "Fine"}, "Box blur, or the smoother tent blur");
    AddPopup(app, "--control-channel", inputs.channel,
             {"Alpha", "Red", "Green", "Blue", "Luma", "Lightness", "Brightness"},
             "What to read from the control picture");
    AddPercent(app, "--focal-point", inputs.focalPoint, "Control value that is in focus");
    AddPercent(app, "--in-focus-range", inputs.inFocusRange,
               "Distance from the focal point that stays in focus");
    AddSlider(app, "--maximum-blur", inputs.maxBlur, {0, 200}, "Largest blur, pixels");
    AddSlider(app, "--aspect-ratio", inputs.aspect, {-1, 1}, "Below 0 a narrow blur, above 0 a flat one");
    app.add_flag("--invert-control", inputs.invert, "Read the control picture inverted");
    app.add_flag("--conform-control-size,!--no-conform-control-size", inputs.conform,
                 "No effect: the control picture is always made the size of the beauty");
    AddPercent(app, "--blend-with-original", inputs.blend, "Share of the original in the result");
}

}  // namespace

Options ParseOptions(int argc, const char* const* argv) {
    Options options;
    CLI::App app("Blurs a picture by a control picture, such as its depth pass.", "pull-focus");
    app.add_option(
           "BEAUTY", options.beauty,
           "The picture: PNG, TIFF, OpenEXR, DPX, TGA, JPEG or WebP, 8 or 16 bits or floats of 0 to 1")
        ->required()
        ->type_name("");
    AddControlFile(app, options.control);
    app.add_option("OUT", options.output, "The result, as .png, .tif, .exr, .dpx, .tga or .jpg")
        ->required()
        ->type_name("");
    AddControls(app, options.inputs);
    app.add_option("--threads", options.threads, "Threads to render on; as many as processors if not given")
        ->check(Within(kThreads))
        ->type_name(kThreads.text());
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        options.help = app.help();
    } catch (const CLI::ParseError& error) {
        throw UsageError(std::string(error.what()) + " (see pull-focus --help)");
    }
    return options;
}
