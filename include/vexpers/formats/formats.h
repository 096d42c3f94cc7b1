/*
 * vexpers/formats/formats.h - two reference storage formats for property
 * trees, built on the public vexpers interface only (library vexpers-formats,
 * CMake target vexpers::formats).
 *
 * Writing walks a tree with the property processor and a node visitor and
 * turns every node into a node section: a start section for a compound node
 * or an array of other items, a leaf section for a leaf or an array of core
 * items, and an end section when a started node ends. Reading streams the
 * sections back into a tree with the start/end protocol of the nodes; types
 * that nobody registered still read (their descriptors keep the name, their
 * values stay core values), so a file can be read, dumped and converted
 * without the types of the program that wrote it.
 *
 *   JSON    ("vexpers-tree" text, UTF-8): one node per line, nested in
 *           "children" arrays; names, type names, object ids and references
 *           visible; arrays of core items as JSON arrays.
 *   binary  header "VXPB" + version, tagged sections, names and type names
 *           stored once and then referred to by number, integers as
 *           variable-length numbers, doubles as 8 bytes.
 *
 * Both readers take untrusted input: a truncated, corrupted or hostile file
 * gives a result code and a report naming the byte offset of the problem,
 * never a crash; nothing is allocated for a count read from the input beyond
 * what the input that remains can hold; nesting costs heap memory, not
 * stack. Writing, reading and dumping never recurse per nesting level.
 *
 * Every function returns a kstd_result (0 or more: success). A null required
 * pointer is a precondition fault (ksys_result_preconditionFailed).
 * Write and read functions clear `statistics` (all 0) and `report` (code 0,
 * offset -1, empty message) on entry; on failure the statistics stay 0 and
 * the report holds the code and the offset. An unknown `format` fails with
 * kfmt_result_malformed.
 */
#ifndef VEXPERS_FORMATS_FORMATS_H
#define VEXPERS_FORMATS_FORMATS_H

#include "vexpers/base.h"
#include "vexpers/tree.h"

VEXPERS_EXTERN_C_BEGIN

#if defined(VEXPERS_BUILDING_FORMATS)
#define KFMT_API __attribute__((visibility("default")))
#else
#define KFMT_API
#endif

/* ---- Formats ------------------------------------------------------------------------ */

/** Reading only: the format is told by the first bytes (kfmt_detectFormat). */
#define kfmt_format_detect 0u
#define kfmt_format_json 1u
#define kfmt_format_binary 2u

/** Version written into both formats and the only one read. */
#define kfmt_formatVersion 1

/* ---- Result codes ------------------------------------------------------------------- */

/** The input ends inside a section, a string or the header. */
#define kfmt_result_truncated VEXPERS_RESULT(0x80004200u)
/** Bytes that are not the format: bad magic, syntax, tags, encodings, unknown
 *  keys, a value of the wrong JSON type, data after the end. */
#define kfmt_result_malformed VEXPERS_RESULT(0x80004201u)
/** A version other than kfmt_formatVersion. */
#define kfmt_result_unsupportedVersion VEXPERS_RESULT(0x80004202u)
/** The input is longer than maxBytes, a string value longer than
 *  maxStringUnits, or a count or length larger than the input that remains
 *  could hold. */
#define kfmt_result_limitExceeded VEXPERS_RESULT(0x80004203u)
/** Sections out of order: an end without an open node, nodes still open at
 *  the end, kinds that contradict the section type. */
#define kfmt_result_protocol VEXPERS_RESULT(0x80004204u)
/** A value that does not fit its type: a number out of range, a core type id
 *  that holds no values, an item type that is not a core type. */
#define kfmt_result_badValue VEXPERS_RESULT(0x80004205u)
/** With kfmt_flag_checkObjectIds: an id defined twice, or a reference to an
 *  id that is defined only after it or never. */
#define kfmt_result_objectIds VEXPERS_RESULT(0x80004206u)
/** An item count or the node count of the stream disagrees with what follows. */
#define kfmt_result_countMismatch VEXPERS_RESULT(0x80004207u)
/** A sink, source or file failed (the report says which). */
#define kfmt_result_io VEXPERS_RESULT(0x80004208u)
/** Writing: a value the formats cannot store (character items, arrays of
 *  string pointers, text with unpaired surrogates in JSON). */
#define kfmt_result_notStorable VEXPERS_RESULT(0x80004209u)

/* ---- Records ------------------------------------------------------------------------ */

/** What went wrong, where. Filled by every function that takes one. */
typedef struct kfmt_report {
    /** The code returned, 0 on success. */
    kstd_result code;
    /** Byte offset in the input (reading) or output (writing) where the
     *  problem was found; -1 when it is not tied to an offset. */
    int64_t offset;
    /** One line of UTF-8 text that names the offset; empty on success. */
    char message[256];
} kfmt_report;

/**
 * Caps on what a read accepts. The defaults (kfmt_options_setDefaults) admit
 * any legitimate tree of the input's size: nesting is bounded only by
 * maxDepth (10,000,000 levels), names by 4,096 units, everything else by the
 * input itself and the tree's limits (vexpers/tree.h). Past a cap: maxDepth
 * kstd_persistentResult_nestingTooDeep, maxNodes
 * kstd_persistentResult_tooManyNodes, maxNameUnits
 * kstd_persistentResult_nameTooLong, maxItems
 * kstd_persistentResult_arraySizeOverflow, maxBytes and maxStringUnits
 * kfmt_result_limitExceeded; an object id beyond
 * kstd_persistentPropertyTree_maxObjectId gives
 * kstd_persistentResult_invalidArgument.
 */
typedef struct kfmt_limits {
    /** Input bytes read at most. */
    int64_t maxBytes;
    /** Nodes (start and leaf sections) at most. */
    int64_t maxNodes;
    /** Open nodes at most at one time. */
    int64_t maxDepth;
    /** UTF-16 units of a property or type name at most. */
    int32_t maxNameUnits;
    /** UTF-16 units of a string value at most. */
    int32_t maxStringUnits;
    /** Items of one array at most (arrays hold at most 2^31 - 1 items). */
    int64_t maxItems;
} kfmt_limits;

/** Reading: also check object ids (each defined once, every reference after
 *  the definition of its id); kfmt_result_objectIds otherwise. */
#define kfmt_flag_checkObjectIds 0x1u
/** Writing JSON: the whole document on one line, without the line breaks
 *  and indentation that otherwise put each node on a line of its own.
 *  Readers take either; the binary format ignores it. */
#define kfmt_flag_compact 0x2u

/** Told every progressInterval nodes and once at the end: nodes and bytes so far. */
typedef void (*kfmt_progressFunction)(void* context, int64_t nodes, int64_t bytes);

typedef struct kfmt_options {
    kfmt_limits limits;
    uint32_t flags;
    kfmt_progressFunction progress;
    void* progressContext;
    int64_t progressInterval;
} kfmt_options;

/** What a read or write met. */
typedef struct kfmt_statistics {
    /** Nodes: start and leaf sections. */
    int64_t nodes;
    /** Nodes that define an object id. */
    int64_t objects;
    /** Reference leaves. */
    int64_t references;
    /** Bytes read or written. */
    int64_t bytes;
    /** Deepest nesting met (1 for a single top-level node). */
    int64_t maxDepth;
} kfmt_statistics;

/** Writes `count` bytes; a negative result stops the write. */
typedef kstd_result (*kfmt_writeFunction)(void* context, const void* bytes, size_t count);
/** Reads up to `capacity` bytes into `buffer`; *count 0 means the end. */
typedef kstd_result (*kfmt_readFunction)(void* context, void* buffer, size_t capacity, size_t* count);

typedef struct kfmt_sink {
    kfmt_writeFunction write;
    void* context;
} kfmt_sink;

typedef struct kfmt_source {
    kfmt_readFunction read;
    void* context;
    /** Bytes the source holds, -1 when unknown (then only the caps bound
     *  what a count read from the input may allocate). */
    int64_t size;
} kfmt_source;

/** Bytes in memory, read from the start. */
typedef struct kfmt_memoryReader {
    const uint8_t* data;
    size_t size;
    size_t position;
} kfmt_memoryReader;

/** A growing buffer of the memory service: `data` holds `size` bytes. */
typedef struct kfmt_memoryWriter {
    uint8_t* data;
    size_t size;
    size_t capacity;
} kfmt_memoryWriter;

/* ---- Options ------------------------------------------------------------------------- */

/** The default limits (maxBytes and maxNodes INT64_MAX, maxDepth 10,000,000,
 *  maxNameUnits 4096, maxStringUnits 2^30 - 1, maxItems 2^31 - 1), no flags,
 *  no progress (interval 65536 nodes). */
KFMT_API kstd_result kfmt_options_setDefaults(kfmt_options* options);

/* ---- Memory sources and sinks ----------------------------------------------------------- */

/** A source over `size` bytes at `data` (which must outlive the source);
 *  `reader` is the source's state. */
KFMT_API kstd_result kfmt_source_initMemory(kfmt_source* source, kfmt_memoryReader* reader, const void* data,
                                            size_t size);
/** An empty memory writer and a sink that appends to it. */
KFMT_API kstd_result kfmt_sink_initMemory(kfmt_sink* sink, kfmt_memoryWriter* writer);
/** Frees the writer's bytes; the writer is empty afterwards. */
KFMT_API kstd_result kfmt_memoryWriter_release(kfmt_memoryWriter* writer);

/* ---- Formats by content and by name --------------------------------------------------------- */

/**
 * The format of a stream from its first bytes: the binary magic "VXPB", or
 * JSON when the first byte that is not white space is '{'. Fewer bytes than
 * that, or anything else, fail with kfmt_result_malformed (*format 0).
 */
KFMT_API kstd_result kfmt_detectFormat(const void* bytes, size_t count, uint32_t* format);
/** The format of a file name: ".json" is JSON, ".vxb" and ".bin" binary;
 *  any other name fails with kfmt_result_malformed (*format 0). */
KFMT_API kstd_result kfmt_formatFromPath(const char* path, uint32_t* format);
/** "json" or "binary" (static text); null for another value. */
KFMT_API const char* kfmt_formatName(uint32_t format);

/* ---- Writing and reading ------------------------------------------------------------------- */

/**
 * Writes every top-level node of `tree` with its subtree to `sink`. The tree
 * is walked with kstd_persistentPropertyProcessor_processPropertyTree, so a
 * decomposed tree's arrays of other items are expanded on the way. A tree
 * read by kfmt_readTree writes the same bytes it was read from (with the same
 * kfmt_flag_compact). `options` (flags and progress only) and `statistics`
 * may be null; `report` may be null.
 * Failures: the processor's and the library's codes, a sink's code,
 * kfmt_result_notStorable; the sink may then have received part of the
 * stream.
 */
KFMT_API kstd_result kfmt_writeTree(kstd_persistentPropertyTree* tree, uint32_t format, const kfmt_sink* sink,
                                    const kfmt_options* options, kfmt_statistics* statistics, kfmt_report* report);

/**
 * Resets `tree` and reads a stream into it: each start section becomes a
 * node started with kstd_persistentPropertyNode_startNode (or a child with
 * startChildNode), each leaf section a leaf (addChildLeafNode), each end
 * section ends the open node. `format` may be kfmt_format_detect. `options`
 * null means the defaults. On failure the tree is reset again, `report`
 * names the offset and the code is returned: the kfmt_result_ codes above,
 * or a code of the library that refused a section (node protocol 0x80000000,
 * a type or value the library rejects, ksys_result_outOfMemory).
 */
KFMT_API kstd_result kfmt_readTree(kstd_persistentPropertyTree* tree, uint32_t format, const kfmt_source* source,
                                   const kfmt_options* options, kfmt_statistics* statistics, kfmt_report* report);

/* ---- Files ---------------------------------------------------------------------------------- */

/** kfmt_writeTree into a new file at `path` (replaced if it exists; removed
 *  again when the write fails). Open or write failures: kfmt_result_io. */
KFMT_API kstd_result kfmt_writeTreeFile(kstd_persistentPropertyTree* tree, uint32_t format, const char* path,
                                        const kfmt_options* options, kfmt_statistics* statistics,
                                        kfmt_report* report);
/** kfmt_readTree from the file at `path`; its size bounds what counts may
 *  allocate. */
KFMT_API kstd_result kfmt_readTreeFile(kstd_persistentPropertyTree* tree, uint32_t format, const char* path,
                                       const kfmt_options* options, kfmt_statistics* statistics,
                                       kfmt_report* report);

/* ---- Text dump ------------------------------------------------------------------------------- */

/**
 * Writes the tree as indented UTF-8 text, one node a line: name (or [index]
 * for an array item), type (with "*" for pointers, "[]" for arrays), then
 * "#id" for an object's definition, "-> #id" for a reference, "= value" for
 * leaves and arrays of core items ("null" for a null pointer or string, "[]"
 * for an empty array), "(N items)" for arrays of other items. Needs no type
 * to be registered. Indentation stops growing at 64 levels. Failures: the
 * sink's code (the sink may have received part of the text),
 * ksys_result_outOfMemory, and the library's codes met while walking.
 */
KFMT_API kstd_result kfmt_dumpTree(const kstd_persistentPropertyTree* tree, const kfmt_sink* sink);

VEXPERS_EXTERN_C_END

#endif /* VEXPERS_FORMATS_FORMATS_H */
