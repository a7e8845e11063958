// A message catalogue of a test's own, in a language that nobody speaks.
#pragma once

#include <libintl.h>

#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "KestrinCore/Message.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {

// A catalogue in gettext's binary form: a header, two tables of lengths and places, the texts.
inline std::string messageCatalogue(std::map<std::string, std::string> messages) {
    messages[""] = "Content-Type: text/plain; charset=UTF-8\n";
    const auto count = static_cast<std::uint32_t>(messages.size());
    constexpr std::uint32_t kHeader = 28;
    const std::uint32_t tableSize = 8 * count;
    std::vector<std::uint32_t> words{0x950412de, 0, count, kHeader, kHeader + tableSize, 0, 0};
    std::string texts;
    const auto add = [&](const std::string& text) {
        words.push_back(static_cast<std::uint32_t>(text.size()));
        words.push_back(kHeader + 2 * tableSize + static_cast<std::uint32_t>(texts.size()));
        texts.append(text) += '\0';
    };
    for (const auto& message : messages) add(message.first);
    for (const auto& message : messages) add(message.second);
    return std::string(reinterpret_cast<const char*>(words.data()), 4 * words.size()) + texts;
}

// As long as it lives the program speaks the language "xx" of a catalogue with these messages, by key.
class OtherLanguage {
 public:
    explicit OtherLanguage(const std::map<std::string, std::string>& messages) {
        folder_.write("xx/LC_MESSAGES/kestrin.mo", messageCatalogue(messages));
        setenv("LANGUAGE", "xx", 1);
        setenv("LC_ALL", "C.UTF-8", 1);
        bindtextdomain("kestrin", folder_.path().c_str());
        message::useEnvironmentLanguage();
    }
    ~OtherLanguage() {
        unsetenv("LANGUAGE");
        unsetenv("LC_ALL");
        std::setlocale(LC_MESSAGES, "C");
    }
    OtherLanguage(const OtherLanguage&) = delete;
    OtherLanguage& operator=(const OtherLanguage&) = delete;

 private:
    TemporaryFolder folder_;
};

}  // namespace kestrin
