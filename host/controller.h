// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "host/array.h"
#include "host/interface.h"
#include "host/key.h"

namespace vl {
class Stream;
}

namespace vl::zr {

class Animation;
class Track;  // what a controller keeps for one animation

// Animates one aspect of a node or material, with a track for each animation that does so. The node or
// material owns it, and it owns its tracks. Where a track may be null, null stands for the track of the
// scene's active animation. The order of functions and fields is the binary interface (host/api.h).
class Controller : public Interface {
public:
    Array* m_pTracks = nullptr;   // of Track*; null or empty when there is none
    std::uint32_t m_dwFlags = 0;  // kControllerPivotGroup

    // The controller's track for the animation, created when there is none; never null.
    virtual Track* AddTrack(Animation* animation) = 0;
    virtual Track* GetTrack(Animation* animation) = 0;  // or null

    // Write the content of a track to a stream, and read it from the stream's position into a track of a
    // controller of the same class. Bytes that are not such content leave the track empty.
    virtual void SaveTrack(Stream* stream, Track* track, int mode) = 0;
    virtual void LoadTrack(Stream* stream, int mode, Track* track) = 0;

    // True when any track has a key.
    virtual bool IsAnimated(int mode) = 0;

    // The object that represents the track in a change record, without a count for the caller.
    virtual Interface* GetTrackObject(Track* track, int mode) = 0;

    // Every key's time becomes time * scale + offset; the keys stay in time order.
    virtual void RetimeTrack(float scale, float offset, Track* track) = 0;

    const char* GetTypeName() override { return "zr_control"; }
};

// The position, rotation and scale of a node; IsTypeOf("zr_controltm"). Keys belong to their track: a pointer
// to one is valid until the key is removed or the track gets other content. The order of functions and fields
// is the binary interface (host/api.h).
class TransformController : public Controller {
public:
    virtual void GetOffset(Vector3<float>* offset) = 0;  // the pivot, in the node's space

    // Adds a key after those of the same or an earlier time; two keys may share a time. Null without a track.
    virtual RotationKey* AddRotationKey(float time, Track* track) = 0;
    virtual PositionKey* AddPositionKey(float time, Track* track) = 0;
    virtual ScaleKey* AddScaleKey(float time, Track* track) = 0;

    // keyType: KeyType.
    virtual int GetTrackKeyCount(int keyType, Track* track) = 0;
    virtual Key* GetKey(int keyType, int index, Track* track) = 0;  // in time order; null outside
    virtual void RemoveKey(int keyType, int index, Track* track) = 0;

    // The node's transform relative to its parent at the time, in the active animation. With
    // kControllerPivotGroup the pivot that everything on the node hangs from is left out. mode, flags: 0.
    virtual void EvaluateMatrix(float time, int mode, Matrix4<double>* m, int flags) = 0;

    // Makes every rotation key of the track an angle-axis key, with the same motion.
    virtual void NormalizeRotationKeys(Track* track, int mode) = 0;

    const char* GetTypeName() override { return kTypeTransformController; }
};

}  // namespace vl::zr
