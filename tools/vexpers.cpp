// vexpers: the command-line tool of the storage formats.
//
//   vexpers demo [--objects N] [--format json|binary] [--out FILE]
//   vexpers dump FILE
//   vexpers convert IN OUT [--from json|binary] [--to json|binary] [--compact]
//   vexpers check FILE
//
// Exit codes: 0 ok, 1 a data error (the file or the round trip), 2 a usage
// error.
#include <unistd.h>

#include <chrono>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "client_object.hpp"
#include "demo_model.hpp"
#include "vexpers/formats/formats.h"
#include "vexpers/vexpers.h"

namespace {

constexpr int exitOk = 0;
constexpr int exitData = 1;
constexpr int exitUsage = 2;

const char* const mainHelp =
    "usage: vexpers <command> [arguments]\n"
    "\n"
    "Stores object graphs as property trees in two formats: JSON text\n"
    "(.json) and a compact binary form (.vxb).\n"
    "\n"
    "commands:\n"
    "  demo      build a sample scene, write it, read it back, compose and verify it\n"
    "  dump      print a stored tree as indented text\n"
    "  convert   convert a stored tree between the two formats\n"
    "  check     validate a stored tree and report the first problem\n"
    "\n"
    "Run 'vexpers <command> --help' for a command's arguments.\n"
    "Exit codes: 0 ok, 1 data error, 2 usage error.\n";

const char* const demoHelp =
    "usage: vexpers demo [--objects N] [--format json|binary] [--out FILE]\n"
    "\n"
    "Registers a sample object model (a scene of named nodes with transforms,\n"
    "tags, shared materials, parent links that make cycles, an enum, a bit\n"
    "field and null pointers), builds a scene, decomposes it into a property\n"
    "tree, writes it, reads it back, composes fresh objects from what was read\n"
    "and checks every value and every shared object. Prints what each stage\n"
    "did and how long it took.\n"
    "\n"
    "  --objects N   nodes in the scene (default 24; a material per 16 nodes)\n"
    "  --format F    json or binary (default: from --out's extension, else json)\n"
    "  --out FILE    write to FILE and read it back from there (default: memory)\n";

const char* const dumpHelp =
    "usage: vexpers dump FILE\n"
    "\n"
    "Prints the tree stored in FILE (either format, told by its first bytes) as\n"
    "indented text: names, types, values, object ids (#n) and references (-> #n).\n"
    "Needs none of the types that wrote the file.\n";

const char* const convertHelp =
    "usage: vexpers convert IN OUT [--from json|binary] [--to json|binary] [--compact]\n"
    "\n"
    "Reads the tree stored in IN and writes it to OUT. IN's format is told by\n"
    "its first bytes unless --from gives it; OUT's by its extension (.json,\n"
    ".vxb, .bin) unless --to gives it. --compact writes JSON on one line\n"
    "instead of a node a line.\n";

const char* const checkHelp =
    "usage: vexpers check FILE\n"
    "\n"
    "Validates FILE: the format, the order of its sections, item and node\n"
    "counts, and object ids (each defined once, every reference after the\n"
    "definition of its id). Reports the first problem with its byte offset.\n";

int usage(const char* command, const char* problem) {
    std::fprintf(stderr, "vexpers%s%s: %s\nRun 'vexpers%s%s --help' for usage.\n", command ? " " : "",
                 command ? command : "", problem, command ? " " : "", command ? command : "");
    return exitUsage;
}

bool isHelp(const char* argument) {
    return std::strcmp(argument, "--help") == 0 || std::strcmp(argument, "-h") == 0;
}

bool parseFormat(const char* text, uint32_t* format) {
    if (std::strcmp(text, "json") == 0) *format = kfmt_format_json;
    else if (std::strcmp(text, "binary") == 0) *format = kfmt_format_binary;
    else return false;
    return true;
}

using Tree = vexpers::client::Owned<kstd_persistentPropertyTree, kstd_persistentPropertyTree_construct,
                                    kstd_persistentPropertyTree_destruct>;

struct Pointer {
    kstd_ptrh p;
    Pointer() { kstd_ptrh_constructEmpty(&p); }
    ~Pointer() { vexpers::demo::releaseScene(&p); kstd_ptrh_destruct(&p); }
    Pointer(const Pointer&) = delete;
    Pointer& operator=(const Pointer&) = delete;
};

struct Memory {
    kfmt_memoryWriter writer{};
    kfmt_sink sink{};
    Memory() { kfmt_sink_initMemory(&sink, &writer); }
    ~Memory() { kfmt_memoryWriter_release(&writer); }
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;
};

kstd_result writeStdout(void*, const void* bytes, size_t count) {
    return std::fwrite(bytes, 1, count, stdout) == count ? 0 : kfmt_result_io;
}

// ---- Progress on a terminal ------------------------------------------------------------

struct Progress {
    const char* stage = nullptr;  // null: no progress shown
    bool shown = false;
};

void showProgress(void* context, int64_t nodes, int64_t bytes) {
    auto* progress = static_cast<Progress*>(context);
    std::fprintf(stderr, "\r  %-10s %12" PRId64 " nodes %10.1f MB", progress->stage, nodes,
                 static_cast<double>(bytes) / 1e6);
    std::fflush(stderr);
    progress->shown = true;
}

// Stages that are one library call show only that they run.
void showWorking(Progress& progress, const char* stage) {
    if (progress.stage == nullptr) return;
    std::fprintf(stderr, "\r  %-10s working...", stage);
    std::fflush(stderr);
    progress.shown = true;
}

void clearProgress(Progress& progress) {
    if (!progress.shown) return;
    std::fprintf(stderr, "\r%60s\r", "");
    progress.shown = false;
}

// ---- demo ----------------------------------------------------------------------------------

class Stopwatch {
public:
    Stopwatch() : start_(std::chrono::steady_clock::now()) {}
    double milliseconds() const {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start_).count();
    }

private:
    std::chrono::steady_clock::time_point start_;
};

void stage(const char* name, double ms, const std::string& what) {
    std::printf("  %-10s %10.2f ms   %s\n", name, ms, what.c_str());
    std::fflush(stdout);
}

std::string counts(const kfmt_statistics& s) {
    char text[200];
    std::snprintf(text, sizeof text, "%" PRId64 " nodes, %" PRId64 " ids, %" PRId64 " references, %" PRId64 " bytes",
                  s.nodes, s.objects, s.references, s.bytes);
    return text;
}

int failed(const char* stageName, kstd_result code, const kfmt_report* report) {
    if (report != nullptr && report->message[0] != 0)
        std::fprintf(stderr, "vexpers demo: %s failed: %s\n", stageName, report->message);
    else
        std::fprintf(stderr, "vexpers demo: %s failed with code 0x%08X\n", stageName, static_cast<unsigned>(code));
    return exitData;
}

bool readFileBytes(const char* path, std::vector<uint8_t>& bytes) {
    FILE* file = std::fopen(path, "rb");
    if (file == nullptr) return false;
    uint8_t block[1 << 16];
    size_t n;
    while ((n = std::fread(block, 1, sizeof block, file)) > 0) bytes.insert(bytes.end(), block, block + n);
    const bool ok = !std::ferror(file);
    std::fclose(file);
    return ok;
}

int demo(int argc, char** argv) {
    int64_t objects = vexpers::demo::defaultNodes;
    uint32_t format = 0;
    const char* out = nullptr;
    for (int i = 0; i < argc; ++i) {
        const char* a = argv[i];
        if (isHelp(a)) {
            std::fputs(demoHelp, stdout);
            return exitOk;
        }
        if (i + 1 >= argc) return usage("demo", (std::string("missing value or unknown argument: ") + a).c_str());
        const char* value = argv[++i];
        if (std::strcmp(a, "--objects") == 0) {
            char* end = nullptr;
            errno = 0;
            const long long n = std::strtoll(value, &end, 10);
            if (errno != 0 || end == value || *end != 0 || n < 1 || n > 100000000)
                return usage("demo", "--objects takes a number from 1 to 100000000");
            objects = n;
        } else if (std::strcmp(a, "--format") == 0) {
            if (!parseFormat(value, &format)) return usage("demo", "--format takes json or binary");
        } else if (std::strcmp(a, "--out") == 0) {
            out = value;
        } else {
            return usage("demo", (std::string("unknown argument: ") + a).c_str());
        }
    }
    if (format == 0 && out != nullptr && kfmt_formatFromPath(out, &format) < 0) format = kfmt_format_json;
    if (format == 0) format = kfmt_format_json;

    Progress progress;
    kfmt_options options;
    kfmt_options_setDefaults(&options);
    options.flags = kfmt_flag_checkObjectIds;
    if (objects >= 100000 && isatty(STDERR_FILENO)) {
        progress.stage = "";
        options.progress = showProgress;
        options.progressContext = &progress;
        options.progressInterval = 1 << 18;
    }
    kfmt_report report{};
    kfmt_statistics written{}, read{}, rewritten{};

    std::printf("vexpers demo: a scene of %" PRId64 " nodes, %s format%s%s\n\n", objects, kfmt_formatName(format),
                out != nullptr ? ", file " : ", in memory", out != nullptr ? out : "");

    // Build.
    Pointer scene;
    vexpers::demo::Census built;
    Stopwatch buildTime;
    kstd_result result = vexpers::demo::buildScene(objects, &scene.p, &built);
    if (result < 0) return failed("build", result, nullptr);
    char what[200];
    std::snprintf(what, sizeof what, "%" PRId64 " objects: 1 scene, %" PRId64 " nodes, %" PRId64 " materials",
                  built.objects(), built.nodes, built.materials);
    stage("build", buildTime.milliseconds(), what);

    // Decompose.
    Tree decomposed;
    {
        kstd_persistentProperty property;
        kstd_persistentProperty_construct(&property);
        showWorking(progress, "decompose");
        Stopwatch time;
        result = kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(&property, u"scene", 2, &scene.p);
        if (result >= 0) result = kstd_persistentPropertyTree_resetDecomposeProperty(&decomposed.r, &property);
        kstd_persistentProperty_destruct(&property);
        clearProgress(progress);
        if (result < 0) return failed("decompose", result, nullptr);
        stage("decompose", time.milliseconds(), "the scene as a property tree");
    }

    // Write.
    Memory bytes;
    {
        if (progress.stage != nullptr) progress.stage = "write";
        Stopwatch time;
        result = out != nullptr ? kfmt_writeTreeFile(&decomposed.r, format, out, &options, &written, &report)
                                : kfmt_writeTree(&decomposed.r, format, &bytes.sink, &options, &written, &report);
        clearProgress(progress);
        if (result < 0) return failed("write", result, &report);
        stage("write", time.milliseconds(), counts(written));
    }
    kstd_persistentPropertyTree_reset(&decomposed.r);

    // Read.
    Tree tree;
    std::vector<uint8_t> fileBytes;
    {
        if (progress.stage != nullptr) progress.stage = "read";
        Stopwatch time;
        if (out != nullptr) {
            result = kfmt_readTreeFile(&tree.r, kfmt_format_detect, out, &options, &read, &report);
        } else {
            kfmt_memoryReader reader;
            kfmt_source source;
            kfmt_source_initMemory(&source, &reader, bytes.writer.data, bytes.writer.size);
            result = kfmt_readTree(&tree.r, kfmt_format_detect, &source, &options, &read, &report);
        }
        clearProgress(progress);
        if (result < 0) return failed("read", result, &report);
        stage("read", time.milliseconds(), counts(read));
    }

    // Write again what was read: the same bytes.
    {
        Memory again;
        if (progress.stage != nullptr) progress.stage = "rewrite";
        Stopwatch time;
        result = kfmt_writeTree(&tree.r, format, &again.sink, &options, &rewritten, &report);
        clearProgress(progress);
        if (result < 0) return failed("rewrite", result, &report);
        const uint8_t* first = bytes.writer.data;
        size_t size = bytes.writer.size;
        if (out != nullptr) {
            if (!readFileBytes(out, fileBytes)) {
                std::fprintf(stderr, "vexpers demo: cannot read %s back\n", out);
                return exitData;
            }
            first = fileBytes.data();
            size = fileBytes.size();
        }
        const bool same = size == again.writer.size && std::memcmp(first, again.writer.data, size) == 0;
        stage("rewrite", time.milliseconds(), same ? "the tree read writes the same bytes" : "DIFFERENT BYTES");
        if (!same) {
            std::fprintf(stderr, "vexpers demo: writing what was read gave other bytes\n");
            return exitData;
        }
    }

    // Compose fresh objects.
    Pointer copy;
    {
        showWorking(progress, "compose");
        Stopwatch time;
        result = kstd_persistentType_loadPropertyNode(vexpers::demo::pointerType(), &copy.p, tree.r.firstChild);
        clearProgress(progress);
        if (result < 0) {
            vexpers::demo::unlinkRecorded(&tree.r);
            return failed("compose", result, nullptr);
        }
        stage("compose", time.milliseconds(), "new objects from the tree read");
    }
    kstd_persistentPropertyTree_reset(&tree.r);

    // Verify.
    {
        Stopwatch time;
        vexpers::demo::Census composed;
        const std::string difference = vexpers::demo::compareScenes(scene.p, copy.p, &composed);
        if (!difference.empty()) {
            std::fprintf(stderr, "vexpers demo: the composed scene differs: %s\n", difference.c_str());
            return exitData;
        }
        std::snprintf(what, sizeof what,
                      "%" PRId64 " nodes and %" PRId64 " materials agree in value; sharing and cycles kept",
                      composed.nodes, composed.materials);
        stage("verify", time.milliseconds(), what);
    }
    std::printf("\nok\n");
    return exitOk;
}

// ---- dump, convert, check -------------------------------------------------------------------

int reportFailure(const char* command, const char* path, const kfmt_report& report) {
    std::fprintf(stderr, "vexpers %s: %s: %s\n", command, path, report.message);
    return exitData;
}

int dump(int argc, char** argv) {
    if (argc >= 1 && isHelp(argv[0])) {
        std::fputs(dumpHelp, stdout);
        return exitOk;
    }
    if (argc != 1) return usage("dump", argc == 0 ? "missing FILE" : "too many arguments");
    Tree tree;
    kfmt_report report{};
    if (kfmt_readTreeFile(&tree.r, kfmt_format_detect, argv[0], nullptr, nullptr, &report) < 0)
        return reportFailure("dump", argv[0], report);
    const kfmt_sink sink{writeStdout, nullptr};
    if (kfmt_dumpTree(&tree.r, &sink) < 0) {
        std::fprintf(stderr, "vexpers dump: cannot print %s\n", argv[0]);
        return exitData;
    }
    return std::fflush(stdout) == 0 ? exitOk : exitData;
}

int convert(int argc, char** argv) {
    std::vector<const char*> paths;
    uint32_t from = kfmt_format_detect;
    uint32_t to = 0;
    kfmt_options options;
    kfmt_options_setDefaults(&options);
    for (int i = 0; i < argc; ++i) {
        const char* a = argv[i];
        if (isHelp(a)) {
            std::fputs(convertHelp, stdout);
            return exitOk;
        }
        if (std::strcmp(a, "--from") == 0 || std::strcmp(a, "--to") == 0) {
            if (i + 1 >= argc || !parseFormat(argv[i + 1], a[2] == 'f' ? &from : &to))
                return usage("convert", "--from and --to take json or binary");
            ++i;
        } else if (std::strcmp(a, "--compact") == 0) {
            options.flags |= kfmt_flag_compact;
        } else if (a[0] == '-' && a[1] != 0) {
            return usage("convert", (std::string("unknown argument: ") + a).c_str());
        } else {
            paths.push_back(a);
        }
    }
    if (paths.size() != 2) return usage("convert", "needs IN and OUT");
    if (to == 0 && kfmt_formatFromPath(paths[1], &to) < 0)
        return usage("convert", "cannot tell OUT's format from its name; give --to json or --to binary");
    Tree tree;
    kfmt_report report{};
    kfmt_statistics in{}, written{};
    if (kfmt_readTreeFile(&tree.r, from, paths[0], nullptr, &in, &report) < 0)
        return reportFailure("convert", paths[0], report);
    if (kfmt_writeTreeFile(&tree.r, to, paths[1], &options, &written, &report) < 0)
        return reportFailure("convert", paths[1], report);
    std::printf("%s (%" PRId64 " bytes) -> %s (%s, %" PRId64 " bytes): %" PRId64 " nodes\n", paths[0], in.bytes,
                paths[1], kfmt_formatName(to), written.bytes, written.nodes);
    return exitOk;
}

int check(int argc, char** argv) {
    if (argc >= 1 && isHelp(argv[0])) {
        std::fputs(checkHelp, stdout);
        return exitOk;
    }
    if (argc != 1) return usage("check", argc == 0 ? "missing FILE" : "too many arguments");
    kfmt_options options;
    kfmt_options_setDefaults(&options);
    options.flags = kfmt_flag_checkObjectIds;
    Tree tree;
    kfmt_report report{};
    kfmt_statistics s{};
    if (kfmt_readTreeFile(&tree.r, kfmt_format_detect, argv[0], &options, &s, &report) < 0)
        return reportFailure("check", argv[0], report);
    std::printf("%s: ok: %" PRId64 " nodes, %" PRId64 " objects, %" PRId64 " references, depth %" PRId64
                ", %" PRId64 " bytes\n",
                argv[0], s.nodes, s.objects, s.references, s.maxDepth, s.bytes);
    return exitOk;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs(mainHelp, stderr);
        return exitUsage;
    }
    const char* command = argv[1];
    if (isHelp(command) || std::strcmp(command, "help") == 0) {
        std::fputs(mainHelp, stdout);
        return exitOk;
    }
    int result;
    if (std::strcmp(command, "demo") == 0) result = demo(argc - 2, argv + 2);
    else if (std::strcmp(command, "dump") == 0) result = dump(argc - 2, argv + 2);
    else if (std::strcmp(command, "convert") == 0) result = convert(argc - 2, argv + 2);
    else if (std::strcmp(command, "check") == 0) result = check(argc - 2, argv + 2);
    else return usage(nullptr, (std::string("unknown command: ") + command).c_str());
    std::fflush(stdout);
    return result;
}
