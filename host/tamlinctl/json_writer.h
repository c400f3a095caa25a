#ifndef JSON_WRITER_H
#define JSON_WRITER_H

#include <cstdint>
#include <string>
#include <vector>

// Writes a JSON document for scripts: objects and arrays nest, separators are placed
// automatically, strings are escaped.
class JsonWriter {
public:
    JsonWriter &beginObject();
    JsonWriter &endObject();
    JsonWriter &beginArray();
    JsonWriter &endArray();
    JsonWriter &key(const std::string &name);
    JsonWriter &value(const std::string &text);
    JsonWriter &value(const std::wstring &text);
    JsonWriter &value(int64_t number);
    JsonWriter &value(uint64_t number);
    JsonWriter &value(int32_t number) { return value(static_cast<int64_t>(number)); }
    JsonWriter &value(uint32_t number) { return value(static_cast<uint64_t>(number)); }
    JsonWriter &value(bool flag);
    JsonWriter &null();

    const std::string &text() const { return m_out; }
    static std::string escape(const std::string &text);

private:
    void separate();

    std::string m_out;
    // One entry per open container: whether it has an element yet.
    std::vector<bool> m_hasElement;
    bool m_afterKey = false;
};

#endif
