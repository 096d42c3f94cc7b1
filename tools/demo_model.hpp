// The sample object model of `vexpers demo`: a scene of named nodes with
// transforms, tags, shared materials and parent links, registered through the
// public registration functions the way a client module does it.
//
//   DemoScene     title, version, root (kstd_ptrh to a DemoNode), camera (a
//                 second pointer to one of the nodes), environment (a
//                 DemoMaterial pointer left null)
//   DemoNode      name, kind (enum DemoKind), flags (bit field DemoFlags),
//                 transform (kstd_vectord, 12 values), tags (vector of
//                 unicode strings), material (kstd_ptrh, shared by many
//                 nodes, null for groups), parent (kstd_ptrh back to the
//                 parent: a cycle), firstChild and nextSibling (kstd_ptrh)
//   DemoMaterial  name, color (kstd_vectord: r, g, b, a), roughness
//
// Every object is shared (it starts with a kstd_shared header and answers
// "kstd_shared"), so decomposition gives each one an id when first met and a
// reference afterwards.
#pragma once

#include <cstdint>
#include <string>

#include "vexpers/vexpers.h"

namespace vexpers::demo {

enum Kind : int64_t { group = 0, mesh = 1, light = 2, camera = 3 };
enum Flags : uint64_t { visible = 1, castsShadow = 2, selectable = 4, locked = 8 };

struct Material {
    kstd_shared header;
    kstd_unicodeString name;
    kstd_vectord color;
    double roughness;
};

struct Node {
    kstd_shared header;
    kstd_unicodeString name;
    int64_t kind;
    uint64_t flags;
    kstd_vectord transform;
    kstd_vector_kstd_unicodeString tags;
    kstd_ptrh material;
    kstd_ptrh parent;
    kstd_ptrh firstChild;
    kstd_ptrh nextSibling;
};

struct Scene {
    kstd_shared header;
    kstd_unicodeString title;
    int32_t version;
    kstd_ptrh root;
    kstd_ptrh camera;
    kstd_ptrh environment;
};

// Registers the model once per process; returns the first failure.
kstd_result registerTypes();
// The descriptor of kstd_ptrh, the type a scene is stored and composed as.
const kstd_persistentType* pointerType();

// Nodes of the embedded default scene.
inline constexpr int64_t defaultNodes = 24;

// What a scene holds.
struct Census {
    int64_t nodes = 0;
    int64_t materials = 0;
    int64_t objects() const { return nodes + materials + 1; }
};

// Builds a scene of `nodes` nodes (at least 1): a tree with four children a
// node, a material for every 16 nodes (at least 3), deterministic values.
// `scene` must be an empty shared pointer.
kstd_result buildScene(int64_t nodes, kstd_ptrh* scene, Census* census);

// Compares a composed copy with the original: every value, and that sharing
// is the same (one copy per original object, parents pointing at the copies
// of the parents, the camera at the copy of its node). Returns an empty
// string when they agree, else the first difference.
std::string compareScenes(const kstd_ptrh& original, const kstd_ptrh& copy, Census* census);

// Breaks the parent cycles and the child links one node at a time and lets
// the scene go; `scene` is empty afterwards.
void releaseScene(kstd_ptrh* scene);

// Breaks the links of every scene and node that composing recorded in
// `tree` (under the ids its nodes define), so that objects of a composition
// that stopped half way do not keep each other alive.
void unlinkRecorded(const kstd_persistentPropertyTree* tree);

}  // namespace vexpers::demo
