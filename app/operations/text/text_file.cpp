// SPDX-License-Identifier: MIT
#include "app/operations/text/text_file.h"

namespace zr {
namespace {

constexpr std::size_t kFlushSize = 1 << 15;  // bytes

}  // namespace

void TextFile::Pass() {
    if (m_text.size() < kFlushSize) return;
    m_file.Write(m_text);
    m_text.clear();
}

void TextFile::Finish() {
    m_file.Write(m_text);
    m_text.clear();
}

}  // namespace zr
