// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <initializer_list>
#include <vector>

#include "platform/windows.h"

// Builds native outline buffers record by record.
//
//   NativeBuffer().Polygon(0, 0).Line({{10, 0}, {10, 10}}).End().bytes
struct NativeBuffer {
    struct XY {
        double x;
        double y;
    };

    std::vector<BYTE> bytes;

    NativeBuffer& Polygon(double x, double y, DWORD type = TT_POLYGON_TYPE) {
        m_header = bytes.size();
        return Put(TTPOLYGONHEADER{0, type, ToFixed({x, y})});
    }

    NativeBuffer& Curve(WORD type, std::initializer_list<XY> points) {
        Put(type).Put(static_cast<WORD>(points.size()));
        for (const XY point : points) Put(ToFixed(point));
        return *this;
    }

    NativeBuffer& Line(std::initializer_list<XY> points) { return Curve(TT_PRIM_LINE, points); }
    NativeBuffer& Spline(std::initializer_list<XY> points) { return Curve(TT_PRIM_QSPLINE, points); }

    NativeBuffer& End() { return End(static_cast<DWORD>(bytes.size() - m_header)); }
    NativeBuffer& End(DWORD cb) {
        for (std::size_t i = 0; i < sizeof cb; ++i)
            bytes[m_header + i] = reinterpret_cast<const BYTE*>(&cb)[i];
        return *this;
    }

private:
    static FIXED ToFixed(double value) {
        const auto bits = static_cast<std::int32_t>(std::lround(value * 65536));
        return {static_cast<WORD>(bits & 0xFFFF), static_cast<SHORT>(bits >> 16)};
    }
    static POINTFX ToFixed(XY point) { return {ToFixed(point.x), ToFixed(point.y)}; }

    template <class T>
    NativeBuffer& Put(const T& value) {
        const auto* first = reinterpret_cast<const BYTE*>(&value);
        bytes.insert(bytes.end(), first, first + sizeof value);
        return *this;
    }

    std::size_t m_header = 0;
};
