// SPDX-License-Identifier: MIT
#pragma once

class ChangeRecord;

// The 3D view behind a view window.
class ViewObject {
public:
    virtual void ClearBackdrop(ChangeRecord* record) = 0;  // record may be null

protected:
    ~ViewObject() = default;
};
