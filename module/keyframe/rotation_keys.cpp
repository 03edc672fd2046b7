// SPDX-License-Identifier: MIT
#include "module/keyframe/rotation_keys.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zrt {

namespace {

// A quarter turn in single precision.
constexpr double kStepLimit = 1.5707963705062866;

// From here on neighbouring floats are more than a step apart: such an angle says nothing about the turns in
// between, and their keys would not fit into memory.
constexpr double kMeaninglessAngle = 16777216.0;

// The number of keys to insert into a step of this angle.
int InsertedKeys(double angle) {
    const double magnitude = std::abs(angle);
    return magnitude < kMeaninglessAngle ? static_cast<int>(magnitude / kStepLimit) : 0;
}

float Between(float from, float to, double fraction) {
    return static_cast<float>(from + fraction * (double{to} - from));
}

ExportRotationKey KeyBetween(float before, float after, double fraction, const vl::Quaternion& orientation) {
    ExportRotationKey key;
    key.fTime = Between(before, after, fraction);
    key.qValue = orientation;
    return key;
}

}  // namespace

vl::Quaternion EulerToQuaternion(const vl::Vector3<float>& angles, std::uint32_t order) {
    vl::Matrix4<double> m;
    m.IdentityMatrix();
    for (int i = 0; i < 3; ++i) {
        switch (order >> (2 * i) & 3) {
            case 0:
                m.RotateX(angles.x);
                break;
            case 1:
                m.RotateY(angles.y);
                break;
            case 2:
                m.RotateZ(angles.z);
                break;
            default:
                break;
        }
    }
    return vl::Quaternion(m);
}

RotationKeys OrientationsFromEuler(const RotationKeys& keys) {
    RotationKeys out;
    out.reserve(keys.size());
    vl::Vector3<float> previous;
    float previousTime = 0;
    for (const ExportRotationKey& key : keys) {
        const vl::Vector3<float>& angles = key.vEuler;
        const double turn =
            std::max({std::abs(double{angles.x} - previous.x), std::abs(double{angles.y} - previous.y),
                      std::abs(double{angles.z} - previous.z)});
        const int inserted = out.empty() ? 0 : InsertedKeys(turn);
        for (int j = 1; j <= inserted; ++j) {
            const double s = static_cast<double>(j) / (inserted + 1);
            const vl::Vector3<float> between{Between(previous.x, angles.x, s),
                                             Between(previous.y, angles.y, s),
                                             Between(previous.z, angles.z, s)};
            out.push_back(KeyBetween(previousTime, key.fTime, s, EulerToQuaternion(between, key.dwOrder)));
        }
        out.push_back(key);
        out.back().qValue = EulerToQuaternion(angles, key.dwOrder);
        previous = angles;
        previousTime = key.fTime;
    }
    return out;
}

RotationKeys OrientationsFromSteps(const RotationKeys& keys) {
    RotationKeys out;
    out.reserve(keys.size());
    vl::Quaternion orientation;
    float previousTime = 0;
    for (const ExportRotationKey& key : keys) {
        const vl::AngleAxis& step = key.aaValue;
        const int inserted = out.empty() ? 0 : InsertedKeys(step.angle);
        for (int j = 1; j <= inserted; ++j) {
            const double s = static_cast<double>(j) / (inserted + 1);
            vl::AngleAxis part = step;
            part.angle = static_cast<float>(step.angle * s);
            out.push_back(KeyBetween(previousTime, key.fTime, s, orientation * vl::Quaternion(part)));
        }
        const vl::Quaternion turn(step);
        orientation = out.empty() ? turn : orientation * turn;
        out.push_back(key);
        out.back().qValue = orientation;
        previousTime = key.fTime;
    }
    return out;
}

void AddSteps(RotationKeys& keys) {
    vl::Matrix4<double> previous;
    bool isFirst = true;
    for (ExportRotationKey& key : keys) {
        vl::Matrix4<double> current;
        current.SetRotate(key.qValue);
        vl::Matrix4<double> step = current;
        if (!isFirst) step.SetM2(current, previous);
        vl::AngleAxis turn(step);
        if (turn.angle > std::numbers::pi) {
            turn = vl::AngleAxis(-turn.x, -turn.y, -turn.z,
                                 static_cast<float>(2 * std::numbers::pi - turn.angle));
        }
        key.aaValue = turn;
        previous = current;
        isFirst = false;
    }
}

}  // namespace zrt
