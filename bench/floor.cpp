// SPDX-License-Identifier: MIT
// floor IN.glb OUT.glb: parses the JSON text of a container in place, writes it again and copies the binary
// chunk. No tool that reads and writes the file can take less time.
#include <rapidjson/document.h>
#include <rapidjson/writer.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <vector>

namespace {

class FileWriter {
public:
    using Ch = char;
    explicit FileWriter(std::FILE* file) : m_file(file) {}
    void Put(char c) {
        m_buffer[m_used++] = c;
        if (m_used == sizeof m_buffer) Flush();
    }
    void Flush() {
        std::fwrite(m_buffer, 1, m_used, m_file);
        m_written += m_used;
        m_used = 0;
    }
    std::size_t Written() const { return m_written; }

private:
    std::FILE* m_file;
    char m_buffer[1 << 16];
    std::size_t m_used = 0;
    std::size_t m_written = 0;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    std::ifstream in(argv[1], std::ios::binary | std::ios::ate);
    std::vector<char> content(static_cast<std::size_t>(in.tellg()));
    in.seekg(0);
    in.read(content.data(), static_cast<std::streamsize>(content.size()));
    std::uint32_t jsonSize = 0;
    std::memcpy(&jsonSize, content.data() + 12, sizeof jsonSize);
    const char* rest = content.data() + 20 + jsonSize;
    const auto restSize = static_cast<std::size_t>(content.data() + content.size() - rest);
    std::vector<char> text(content.begin() + 20, content.begin() + 20 + jsonSize);
    text.push_back('\0');
    rapidjson::Document document;
    document.ParseInsitu(text.data());
    if (document.HasParseError()) return 1;
    std::FILE* out = std::fopen(argv[2], "wb");
    if (out == nullptr) return 1;
    std::fwrite(content.data(), 1, 20, out);
    FileWriter stream(out);
    rapidjson::Writer<FileWriter> writer(stream);
    document.Accept(writer);
    while (stream.Written() % 4 != 0) {
        stream.Put(' ');
        stream.Flush();
    }
    std::fwrite(rest, 1, restSize, out);
    const std::uint32_t sizes[] = {static_cast<std::uint32_t>(20 + stream.Written() + restSize),
                                   static_cast<std::uint32_t>(stream.Written())};
    std::fseek(out, 8, SEEK_SET);
    std::fwrite(sizes, sizeof sizes[0], 2, out);
    return std::fclose(out) == 0 ? 0 : 1;
}
