// The text dump of a small scene matches the checked-in text, whichever
// format the scene went through.
#include <fstream>
#include <sstream>

#include "formats/format_support.hpp"

namespace vexpers::test::formats {
namespace {

std::string expectedDump() {
    std::ifstream file(VEXPERS_FORMATS_TEST_DATA "/scene5.dump.txt", std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

TEST(FormatsDump, SmallSceneMatchesTheCheckedInText) {
    const std::string expected = expectedDump();
    ASSERT_FALSE(expected.empty());
    for (const uint32_t format : bothFormats) {
        Tree tree;
        ASSERT_EQ(read(&tree.t, sceneBytes(5, format)), 0);
        EXPECT_EQ(dumpOf(&tree.t), expected) << kfmt_formatName(format);
    }
    // The decomposed tree itself dumps the same.
    Scene scene;
    demo::Census census;
    Tree decomposed;
    ASSERT_EQ(demo::buildScene(5, &scene.p, &census), 0);
    ASSERT_EQ(decompose(scene.p, &decomposed.t), 0);
    EXPECT_EQ(dumpOf(&decomposed.t), expected);
}

}  // namespace
}  // namespace vexpers::test::formats
