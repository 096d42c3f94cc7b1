// Options, memory and file sources and sinks, format detection and the
// reading entry point.
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "binary.hpp"
#include "reader.hpp"

using namespace vexpers::formats;

extern "C" {

KFMT_API kstd_result kfmt_options_setDefaults(kfmt_options* options) {
    KFMT_REQUIRE(options != nullptr);
    *options = kfmt_options{};
    kfmt_limits& limits = options->limits;
    limits.maxBytes = INT64_MAX;
    limits.maxNodes = INT64_MAX;
    limits.maxDepth = 10000000;
    limits.maxNameUnits = 4096;
    limits.maxStringUnits = 0x3FFFFFFF;
    limits.maxItems = 0x7FFFFFFF;
    options->progressInterval = 65536;
    return 0;
}

static kstd_result readMemory(void* context, void* buffer, size_t capacity, size_t* count) {
    auto* reader = static_cast<kfmt_memoryReader*>(context);
    size_t left = reader->size - reader->position;
    if (left > capacity) left = capacity;
    if (left > 0) std::memcpy(buffer, reader->data + reader->position, left);
    reader->position += left;
    *count = left;
    return 0;
}

KFMT_API kstd_result kfmt_source_initMemory(kfmt_source* source, kfmt_memoryReader* reader, const void* data,
                                            size_t size) {
    KFMT_REQUIRE(source != nullptr);
    KFMT_REQUIRE(reader != nullptr);
    KFMT_REQUIRE(data != nullptr || size == 0);
    *reader = kfmt_memoryReader{static_cast<const uint8_t*>(data), size, 0};
    *source = kfmt_source{readMemory, reader, static_cast<int64_t>(size)};
    return 0;
}

static kstd_result writeMemory(void* context, const void* bytes, size_t count) {
    auto* writer = static_cast<kfmt_memoryWriter*>(context);
    if (count > SIZE_MAX - writer->size) return ksys_result_outOfMemory;
    if (writer->size + count > writer->capacity) {
        size_t capacity = writer->capacity < 4096 ? 4096 : writer->capacity * 2;
        if (capacity < writer->size + count) capacity = writer->size + count;
        void* memory = writer->data;
        KFMT_TRY(ksys_memory_realloc_internal(capacity, &memory));
        writer->data = static_cast<uint8_t*>(memory);
        writer->capacity = capacity;
    }
    std::memcpy(writer->data + writer->size, bytes, count);
    writer->size += count;
    return 0;
}

KFMT_API kstd_result kfmt_sink_initMemory(kfmt_sink* sink, kfmt_memoryWriter* writer) {
    KFMT_REQUIRE(sink != nullptr);
    KFMT_REQUIRE(writer != nullptr);
    *writer = kfmt_memoryWriter{};
    *sink = kfmt_sink{writeMemory, writer};
    return 0;
}

KFMT_API kstd_result kfmt_memoryWriter_release(kfmt_memoryWriter* writer) {
    KFMT_REQUIRE(writer != nullptr);
    void* memory = writer->data;
    ksys_memory_free_internal(&memory);
    *writer = kfmt_memoryWriter{};
    return 0;
}

KFMT_API kstd_result kfmt_detectFormat(const void* bytes, size_t count, uint32_t* format) {
    KFMT_REQUIRE(format != nullptr);
    KFMT_REQUIRE(bytes != nullptr || count == 0);
    *format = 0;
    const auto* b = static_cast<const uint8_t*>(bytes);
    if (count >= sizeof binary::magic && std::memcmp(b, binary::magic, sizeof binary::magic) == 0) {
        *format = kfmt_format_binary;
        return 0;
    }
    for (size_t i = 0; i < count; ++i) {
        if (b[i] == ' ' || b[i] == '\t' || b[i] == '\n' || b[i] == '\r') continue;
        if (b[i] != '{') break;
        *format = kfmt_format_json;
        return 0;
    }
    return kfmt_result_malformed;
}

KFMT_API kstd_result kfmt_formatFromPath(const char* path, uint32_t* format) {
    KFMT_REQUIRE(path != nullptr);
    KFMT_REQUIRE(format != nullptr);
    *format = 0;
    const char* dot = std::strrchr(path, '.');
    const char* slash = std::strrchr(path, '/');
    if (dot == nullptr || (slash != nullptr && dot < slash)) return kfmt_result_malformed;
    if (std::strcmp(dot, ".json") == 0) *format = kfmt_format_json;
    else if (std::strcmp(dot, ".vxb") == 0 || std::strcmp(dot, ".bin") == 0) *format = kfmt_format_binary;
    else return kfmt_result_malformed;
    return 0;
}

KFMT_API const char* kfmt_formatName(uint32_t format) {
    if (format == kfmt_format_json) return "json";
    if (format == kfmt_format_binary) return "binary";
    return nullptr;
}

KFMT_API kstd_result kfmt_readTree(kstd_persistentPropertyTree* tree, uint32_t format, const kfmt_source* source,
                                   const kfmt_options* options, kfmt_statistics* statistics, kfmt_report* report) {
    KFMT_REQUIRE(tree != nullptr);
    KFMT_REQUIRE(source != nullptr && source->read != nullptr);
    succeed(report);
    if (statistics != nullptr) *statistics = kfmt_statistics{};
    if (format > kfmt_format_binary) return fail(report, kfmt_result_malformed, -1, "unknown format %u", format);
    kfmt_options defaults;
    if (options == nullptr) {
        kfmt_options_setDefaults(&defaults);
        options = &defaults;
    }
    kstd_result result = kstd_persistentPropertyTree_reset(tree);
    if (result < 0) return fail(report, result, -1, "cannot reset the tree");

    Input* input = nullptr;
    SectionReader* reader = nullptr;
    Defer release([&] {
        destroyObject(reader);
        destroyObject(input);
    });
    result = createObject(&input, source, options->limits.maxBytes);
    if (result >= 0) result = input->init();
    if (result >= 0) result = createObject(&reader, tree, *options, *input);
    if (result >= 0) result = reader->init();
    if (result < 0) return fail(report, result, -1, "cannot set up the reader");

    if (format == kfmt_format_detect)
        format = input->peek() == binary::magic[0] ? kfmt_format_binary : kfmt_format_json;
    result = format == kfmt_format_binary ? decodeBinary(*input, *reader) : decodeJson(*input, *reader);
    if (result < 0) {
        kstd_persistentPropertyTree_reset(tree);
        int64_t at = reader->problemOffset() >= 0 ? reader->problemOffset() : input->offset();
        const char* problem = reader->problem() != nullptr ? reader->problem() : "cannot read the stream";
        // A reference met earlier to an id not defined before it is the
        // first problem of the stream.
        if ((options->flags & kfmt_flag_checkObjectIds) && reader->earlierIdProblem(at, &at, &problem))
            result = kfmt_result_objectIds;
        return fail(report, result, at, "%s", problem);
    }
    kfmt_statistics met = reader->statistics();
    met.bytes = input->offset();
    if (statistics != nullptr) *statistics = met;
    if (options->progress != nullptr) options->progress(options->progressContext, met.nodes, met.bytes);
    return 0;
}

// ---- Files -------------------------------------------------------------------------------

static kstd_result writeFile(void* context, const void* bytes, size_t count) {
    return std::fwrite(bytes, 1, count, static_cast<FILE*>(context)) == count ? 0 : kfmt_result_io;
}

static kstd_result readFile(void* context, void* buffer, size_t capacity, size_t* count) {
    FILE* file = static_cast<FILE*>(context);
    *count = std::fread(buffer, 1, capacity, file);
    return *count == 0 && std::ferror(file) ? kfmt_result_io : 0;
}

KFMT_API kstd_result kfmt_writeTreeFile(kstd_persistentPropertyTree* tree, uint32_t format, const char* path,
                                        const kfmt_options* options, kfmt_statistics* statistics,
                                        kfmt_report* report) {
    KFMT_REQUIRE(tree != nullptr);
    KFMT_REQUIRE(path != nullptr);
    succeed(report);
    FILE* file = std::fopen(path, "wb");
    if (file == nullptr) return fail(report, kfmt_result_io, -1, "cannot create %s: %s", path, std::strerror(errno));
    const kfmt_sink sink{writeFile, file};
    kstd_result result = kfmt_writeTree(tree, format, &sink, options, statistics, report);
    if (std::fclose(file) != 0 && result >= 0)
        result = fail(report, kfmt_result_io, -1, "cannot write %s: %s", path, std::strerror(errno));
    if (result < 0) std::remove(path);
    return result;
}

KFMT_API kstd_result kfmt_readTreeFile(kstd_persistentPropertyTree* tree, uint32_t format, const char* path,
                                       const kfmt_options* options, kfmt_statistics* statistics,
                                       kfmt_report* report) {
    KFMT_REQUIRE(tree != nullptr);
    KFMT_REQUIRE(path != nullptr);
    succeed(report);
    FILE* file = std::fopen(path, "rb");
    if (file == nullptr) return fail(report, kfmt_result_io, -1, "cannot open %s: %s", path, std::strerror(errno));
    struct stat facts;
    int64_t size = -1;
    if (fstat(fileno(file), &facts) == 0 && S_ISREG(facts.st_mode)) size = static_cast<int64_t>(facts.st_size);
    const kfmt_source source{readFile, file, size};
    const kstd_result result = kfmt_readTree(tree, format, &source, options, statistics, report);
    std::fclose(file);
    return result;
}

}  // extern "C"
