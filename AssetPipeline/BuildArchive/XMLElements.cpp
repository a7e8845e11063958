#include "AssetPipeline/BuildArchive/XMLElements.h"

#include <expat.h>

#include <exception>
#include <memory>
#include <new>

#include "AssetPipeline/BuildArchive/BuildArchiveError.h"

namespace kestrin::XMLElements {
namespace {

// What expat's callbacks work on. They are called from C and so let no exception through: it is kept and thrown once
// expat has returned.
struct Reading {
    XML_Parser parser;
    const Events& events;
    std::size_t depth = 0;
    bool isDone = false;
    std::exception_ptr failure = nullptr;

    template <class Step>
    void guarded(Step&& step) noexcept {
        if (isDone || failure) return;  // expat still reports what it has already gone through
        try {
            step();
        } catch (...) {
            failure = std::current_exception();
        }
        if (isDone || failure) XML_StopParser(parser, XML_FALSE);
    }

    [[noreturn]] static void refuse() { throw BuildArchiveError(BuildArchiveError::Kind::malformed); }
};

Reading& readingOf(void* data) {
    return *static_cast<Reading*>(data);
}

void onStart(void* data, const XML_Char* name, const XML_Char** pairs) {
    auto& reading = readingOf(data);
    reading.guarded([&] {
        if (++reading.depth > mostDepth) Reading::refuse();
        Attributes attributes;
        for (; *pairs != nullptr; pairs += 2) attributes.emplace(pairs[0], pairs[1]);
        reading.events.start(name, attributes);
        reading.isDone = reading.events.isDone();
    });
}

void onEnd(void* data, const XML_Char*) {
    auto& reading = readingOf(data);
    reading.guarded([&] {
        --reading.depth;
        reading.events.end();
        reading.isDone = reading.events.isDone();
    });
}

void onText(void* data, const XML_Char* text, int length) {
    auto& reading = readingOf(data);
    reading.guarded([&] { reading.events.text({text, static_cast<std::size_t>(length)}); });
}

void onEntity(void* data, const XML_Char*, int, const XML_Char*, int, const XML_Char*, const XML_Char*,
              const XML_Char*, const XML_Char*) {
    readingOf(data).guarded([] { Reading::refuse(); });
}

}  // namespace

void forEach(std::string_view document, const Events& events) {
    if (document.size() > mostBytes) Reading::refuse();
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate(nullptr),
                                                                              XML_ParserFree);
    if (!parser) throw std::bad_alloc();
    Reading reading{parser.get(), events};
    XML_SetUserData(parser.get(), &reading);
    XML_SetElementHandler(parser.get(), onStart, onEnd);
    XML_SetCharacterDataHandler(parser.get(), onText);
    XML_SetEntityDeclHandler(parser.get(), onEntity);
    const auto status = XML_Parse(parser.get(), document.data(), static_cast<int>(document.size()), XML_TRUE);
    if (reading.failure) std::rethrow_exception(reading.failure);
    if (status != XML_STATUS_OK && !reading.isDone) Reading::refuse();
}

}  // namespace kestrin::XMLElements
