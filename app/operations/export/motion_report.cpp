// SPDX-License-Identifier: MIT
#include "app/operations/export/motion_report.h"

#include <algorithm>
#include <stdexcept>

#include "app/scene/curves.h"
#include "base/text.h"

namespace zr {
namespace {

std::string Place(const MotionReport& report) {
    return Join("at ", Short(report.time), " s, node \"", report.node, "\", animation \"", report.animation,
                "\"");
}

std::string ValuePlace(const MotionReport& report) {
    return Join("of its range at ", Short(report.valueTime), " s of a weight or pointer of animation \"",
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
        throw std::runtime_error(Join("the motion would deviate by ", Short(report.deviation, 3), " ",
                                      Place(report), "; the limit is ", Short(limit, 3),
                                      " (--max-deviation)"));
    if (report.valueDeviation > options.maxDeviation)
        throw std::runtime_error(Join("the motion would deviate by ", Short(report.valueDeviation, 3), " ",
                                      ValuePlace(report), "; the limit is ", Short(options.maxDeviation, 3),
                                      " (--max-deviation)"));
}

std::string Describe(const MotionReport& report) {
    std::string text = Join(Counted(report.keysBefore, "key"), " became ", report.keysAfter);
    if (report.check == MotionCheck::kOff) return text + "; motion not checked";
    if (report.node.empty()) return text;
    text += Join("; ", NameOf(report.check), " check: largest deviation ", Short(report.deviation, 3), " ",
                 Place(report));
    if (report.valueDeviation > 0)
        text += Join("; ", Short(report.valueDeviation, 3), " ", ValuePlace(report));
    return text;
}

}  // namespace zr
