// SPDX-License-Identifier: MIT
#include "app/operations/export/motion_report.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "app/scene/curves.h"
#include "base/text.h"

namespace zr {
namespace {

std::string Figure(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3g", value);
    return text;
}

std::string Seconds(double time) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g s", time);
    return text;
}

std::string Place(const MotionReport& report) {
    return Join("at ", Seconds(report.time), ", node \"", report.node, "\", animation \"", report.animation,
                "\"");
}

std::string ValuePlace(const MotionReport& report) {
    return Join("of its range at ", Seconds(report.valueTime), " of a weight or pointer of animation \"",
                report.value, "\"");
}

}  // namespace

std::string NameOf(MotionCheck check) {
    if (check == MotionCheck::kOff) return "off";
    return check == MotionCheck::kQuick ? "quick" : "thorough";
}

std::size_t CountKeys(const kernix::AnimationModel& animation) {
    std::size_t count = 0;
    for (vl::zr::Track* track : animation.Tracks()) {
        if (dynamic_cast<kernix::TransformTrack*>(track) != nullptr)
            count += static_cast<std::size_t>(track->GetKeyCount());
    }
    return count;
}

void Add(MotionReport& report, const MotionReport& other) {
    report.check = other.check;
    report.keysBefore += other.keysBefore;
    report.keysAfter += other.keysAfter;
    report.size = std::max(report.size, other.size);
    if (report.node.empty() || other.deviation > report.deviation) {
        report.deviation = other.deviation;
        report.time = other.time;
        report.node = other.node;
        report.animation = other.animation;
    }
    if (other.valueDeviation <= report.valueDeviation) return;
    report.valueDeviation = other.valueDeviation;
    report.valueTime = other.valueTime;
    report.value = other.value;
}

void CheckDeviation(const MotionReport& report, const ExportOptions& options) {
    if (options.Has(vl::tk::kGroupKeysOnly)) return;  // leaves out keys on purpose
    const double limit = options.maxDeviation * report.size;
    if (report.deviation > limit)
        throw std::runtime_error(Join("the motion would deviate by ", Figure(report.deviation), " ",
                                      Place(report), "; the limit is ", Figure(limit), " (--max-deviation)"));
    if (report.valueDeviation > options.maxDeviation)
        throw std::runtime_error(Join("the motion would deviate by ", Figure(report.valueDeviation), " ",
                                      ValuePlace(report), "; the limit is ", Figure(options.maxDeviation),
                                      " (--max-deviation)"));
}

std::string Describe(const MotionReport& report) {
    std::string text = Join(report.keysBefore, " keys became ", report.keysAfter);
    if (report.check == MotionCheck::kOff) return text + "; motion not checked";
    if (report.node.empty()) return text;
    text += Join("; ", NameOf(report.check), " check: largest deviation ", Figure(report.deviation), " ",
                 Place(report));
    if (report.valueDeviation > 0) text += Join("; ", Figure(report.valueDeviation), " ", ValuePlace(report));
    return text;
}

}  // namespace zr
