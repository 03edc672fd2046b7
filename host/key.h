// SPDX-License-Identifier: MIT
#pragma once

#include "host/kinds.h"
#include "host/math.h"

namespace vl::zr {

// One key of a transform track, owned by its track. Changing m_fTime does not move the key in its track;
// Controller::RetimeTrack does that.
// The order of functions and fields is the binary interface (host/api.h).
class Key {
public:
    float m_fTime = 0;       // seconds
    float m_params[5] = {};  // m_params[0]: KeyInterpolation; the others are 0

    virtual ~Key() = default;

    bool Passes(KeyInterpolation how) const { return m_params[0] == static_cast<float>(how); }
};

class PositionKey : public Key {  // units of the scene
public:
    virtual void SetValue(const Vector3<float>& value) = 0;
    virtual void GetValue(Vector3<float>* value) = 0;
};

class ScaleKey : public Key {  // factors along x, y and z
public:
    virtual void SetValue(const Vector3<float>& value) = 0;
    virtual void GetValue(Vector3<float>* value) = 0;
};

// A rotation in one of three forms. Quaternion and Euler keys hold the orientation; an angle-axis key holds
// the orientation when it is the first of its track, else the step from the previous key's orientation.
class RotationKey : public Key {
public:
    virtual void SetValue(const AngleAxis& value) = 0;  // makes it an angle-axis key
    virtual void GetValue(AngleAxis* value) = 0;        // of the key's own value, in every form
    virtual void GetQuaternion(Quaternion* value) = 0;  // of the key's own value, in every form

    // Angles about X, Y and Z, and the order: three 2-bit axis codes, lowest first (0 X, 1 Y, 2 Z, 3
    // nothing). Both zero for the other forms.
    virtual void GetEuler(Vector3<float>* angles, int* order) = 0;
    virtual int GetRotationType() = 0;  // RotationKeyType
};

}  // namespace vl::zr
