// SPDX-License-Identifier: MIT
#pragma once

class ChangeRecord;

// The 3D view behind a view window. The host owns it. On the interface thread.
// The order of functions and fields is the binary interface (host/api.h).
class ViewObject {
public:
    virtual void ClearBackdrop(ChangeRecord* record) = 0;  // record may be null

protected:
    ~ViewObject() = default;
};
