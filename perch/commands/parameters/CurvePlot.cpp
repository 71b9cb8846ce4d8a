#include "CurvePlot.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>
#include <string_view>

#include "Console.h"
#include "PF_Values.h"
#include "ParameterText.h"

namespace perch {
namespace {

// In pixels of the picture.
constexpr double kWidth = 720;
constexpr double kLeft = 90;   // of the plot; the values stand there
constexpr double kRight = 20;  // beside it
constexpr double kStripHeight = 150;
constexpr double kPlotHeight = 90;
constexpr double kTitleHeight = 30;
constexpr std::array kColors{"#c0392b", "#1e8449", "#1f618d", "#7d3c98"};

std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            default:
                result += c;
        }
    }
    return result;
}

std::size_t numberCount(const Parameter& parameter) {
    switch (parameter.definition.param_type) {
        case PF_Param_COLOR:
            return 4;
        case PF_Param_POINT:
            return 2;
        case PF_Param_POINT_3D:
            return 3;
        default:
            return 1;
    }
}

std::string numberText(const Parameter& parameter, double number) {
    return numberCount(parameter) > 1 ? formatNumber(number)
                                      : valueText(parameter, {parameter.index, {number}});
}

// One curve's part of the picture.
class Strip {
public:
    Strip(const PlottedCurve& plotted, const std::vector<std::int32_t>& frames, double top)
        : parameter(*plotted.parameter), curve(*plotted.curve), frames(frames), top(top + kTitleHeight) {
        for (std::size_t i = 0; i < numberCount(parameter); ++i) {
            for (const std::int32_t frame : frames)
                widen(settingAt(curve, frame).numbers[i]);
        }
    }

    std::string draw() const {
        std::string out = text(kLeft, top - 12, "start", printable(parameter.name), "font-weight=\"bold\"");
        out += fmt::format(
            "<rect x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\" fill=\"none\" stroke=\"#bbb\"/>\n", kLeft,
            top, kWidth - kLeft - kRight, kPlotHeight);
        if (least < most) out += text(kLeft - 8, top + 10, "end", numberText(parameter, most));
        out += text(kLeft - 8, y(least), "end", numberText(parameter, least));
        out += text(kLeft, top + kPlotHeight + 16, "start", fmt::format("{}", frames.front()));
        if (frames.size() > 1)
            out += text(kWidth - kRight, top + kPlotHeight + 16, "end", fmt::format("{}", frames.back()));
        for (std::size_t i = 0; i < numberCount(parameter); ++i)
            out += line(i);
        return out;
    }

private:
    void widen(double number) {
        least = std::min(least, number);
        most = std::max(most, number);
    }

    double x(std::int32_t frame) const {
        const double length = std::max(1.0, static_cast<double>(frames.back()) - frames.front());
        return kLeft + (static_cast<double>(frame) - frames.front()) / length * (kWidth - kLeft - kRight);
    }

    // A value that never moves is in the middle.
    double y(double number) const {
        const double height = least < most ? (number - least) / (most - least) : 0.5;
        return top + kPlotHeight * (1 - height);
    }

    static std::string text(double x, double y, const char* anchor, std::string_view words,
                            const char* style = "") {
        return fmt::format("<text x=\"{:.1f}\" y=\"{:.1f}\" text-anchor=\"{}\" {}>{}</text>\n", x, y, anchor,
                           style, escaped(words));
    }

    std::string line(std::size_t part) const {
        const char* const color = kColors[part];
        std::string points;
        std::string marks;
        for (const std::int32_t frame : frames) {
            const double height = y(settingAt(curve, frame).numbers[part]);
            fmt::format_to(std::back_inserter(points), "{:.1f},{:.1f} ", x(frame), height);
            fmt::format_to(std::back_inserter(marks),
                           "<circle cx=\"{:.1f}\" cy=\"{:.1f}\" r=\"1.5\" fill=\"{}\"/>\n", x(frame), height,
                           color);
        }
        for (const ParameterKey& key : curve.keys) {
            if (!curve.moves() || key.frame < frames.front() || key.frame > frames.back()) continue;
            fmt::format_to(std::back_inserter(marks),
                           "<rect x=\"{:.1f}\" y=\"{:.1f}\" width=\"6\" height=\"6\" fill=\"{}\"/>\n",
                           x(key.frame) - 3, y(key.numbers[part]) - 3, color);
        }
        return fmt::format("<polyline points=\"{}\" fill=\"none\" stroke=\"{}\"/>\n{}", points, color, marks);
    }

    const Parameter& parameter;
    const ParameterCurve& curve;
    const std::vector<std::int32_t>& frames;
    double top;
    double least = std::numeric_limits<double>::infinity();
    double most = -std::numeric_limits<double>::infinity();
};

}  // namespace

bool isPlot(std::string_view text) {
    return text.starts_with("<svg ");
}

std::string plotCurves(const std::vector<PlottedCurve>& curves, const std::vector<std::int32_t>& frames) {
    const double height = kStripHeight * static_cast<double>(curves.size());
    std::string out = fmt::format(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{1}\" viewBox=\"0 0 {0} {1}\" "
        "font-family=\"sans-serif\" font-size=\"12\">\n<rect width=\"{0}\" height=\"{1}\" fill=\"white\"/>\n",
        kWidth, height);
    for (std::size_t i = 0; i < curves.size(); ++i)
        out += Strip(curves[i], frames, kStripHeight * static_cast<double>(i)).draw();
    return out + "</svg>\n";
}

}  // namespace perch
