// SPDX-License-Identifier: MIT
#include "host/stream.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "kernix/module_resource.h"
#include "kernix/utf.h"

namespace kernix {
namespace {

class MemoryStream final : public vl::Stream {
public:
    MemoryStream(std::string content, bool writable) : m_content(std::move(content)), m_writable(writable) {}

    void Seek(std::int64_t offset, int origin) override {
        const auto size = static_cast<std::int64_t>(m_content.size());
        const std::int64_t base = origin == 0   ? 0
                                  : origin == 1 ? static_cast<std::int64_t>(m_position)
                                                : size;
        const std::int64_t place = offset < -base ? 0 : offset > size - base ? size : base + offset;
        m_position = static_cast<std::size_t>(place);
    }
    std::size_t Read(void* out, std::size_t size) override {
        const std::size_t taken = std::min(size, m_content.size() - m_position);
        if (taken != 0) std::memcpy(out, m_content.data() + m_position, taken);
        m_position += taken;
        return taken;
    }
    bool Write(const void* data, std::size_t size) override {
        if (!m_writable) return false;
        if (size == 0) return true;
        m_content.replace(m_position, size, static_cast<const char*>(data), size);
        m_position += size;
        return true;
    }
    std::size_t GetSize() override { return m_content.size(); }

private:
    std::string m_content;
    std::size_t m_position = 0;
    bool m_writable;
};

constexpr unsigned kReadResource = 2;

}  // namespace

}  // namespace kernix

namespace vl {

Stream* Stream::Create(HINSTANCE module, const String& name, unsigned flags) try {
    const std::string text = kernix::ToUtf8(name.Text());
    const std::size_t bar = text.find('|');
    if (flags != kernix::kReadResource || bar == std::string::npos) return nullptr;
    auto content = kernix::ReadModuleResource(module, text.substr(0, bar), text.substr(bar + 1));
    return content ? new kernix::MemoryStream(std::move(*content), false) : nullptr;
} catch (...) {
    return nullptr;
}

Stream* Stream::CreateInMemory() {
    return new kernix::MemoryStream({}, true);
}

}  // namespace vl
