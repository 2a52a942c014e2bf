#include "core/option_table.h"
#include "tests/support/apply_device.h"

namespace {

std::string App(const std::string& name, const std::string& values) {
    return "[HKEY_LOCAL_MACHINE\\Software\\Apps\\" + name + "]\n" + values + "\n";
}

TEST(ApplicationKeysTest, DeletesTheKeysOfWhatIsGone) {
    std::string noRoomForItsEnd = "\"InstallDir\"=hex:5c,00";
    for (int count = 1; count < 1024; ++count) {
        noRoomForItsEnd += ",6e,00";
    }
    const std::pair<std::string, bool> cases[] = {
        {R"("InstallDir"="\\Apps\\Live")", true},
        {R"("InstallDir"="\\apps\\live\\")", true},
        {R"("InstallDir"="\\Apps\\file")", true},
        {R"("InstallDir"="\\")", true},
        {R"("InstallDir"=hex:5c,00,41,00,70,00,70,00,73,00)", true},  // without terminator
        {R"("InstallDir"="\\Apps\\Live. .")", true},
        {R"("InstallDir"="\\Apps\\fil?")", true},
        {R"("InstallDir"="\\Apps\\Dead")", false},
        {R"("InstallDir"="\\Apps\\..")", false},
        {R"("InstallDir"="")", false},
        {R"("Other"="\\Apps\\Dead")", true},
        {R"("InstallDir"=hex:5c,00,44)", true},  // half a character
        {noRoomForItsEnd, true},
    };
    for (const auto& [values, stays] : cases) {
        const ApplyResult result = ApplySilently(
            {{"Apps/Live/", "Apps/file="}, kQuietTweaks + App("One", values), OPT_CLEAR_REGISTRY});
        EXPECT_EQ(result.registry.find("Apps\\One") != std::string::npos, stays) << values;
        EXPECT_EQ(result.boxes, Entries()) << values;
        EXPECT_EQ(result.notes, "") << values;
    }
    EXPECT_EQ(ApplySilently({{}, kQuietTweaks, OPT_CLEAR_REGISTRY}).boxes,
              Entries{"[Error] Failed retrieving registry information"});
}

TEST(ApplicationKeysTest, LeavesTheKeyThatMovesUpForTheNextRun) {
    const std::string dead = R"("InstallDir"="\\Dead")";
    const std::string live = R"("InstallDir"="\\Live")";
    std::string registry = kQuietTweaks + App("A", dead) + App("B", dead) + App("C", live) +
                           App("D", dead) + App("D\\Sub", live);
    for (const std::string& after : {App("B", dead) + App("C", live), App("C", live)}) {
        registry = ApplySilently({{"Live/"}, registry, OPT_CLEAR_REGISTRY}).registry;
        EXPECT_EQ(registry, kQuietTweaks + after);
    }
}

}  // namespace
