#include "screens/screens.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "core/application.h"
#include "screens/catalogue.h"
#include "shell/windows.h"
#include "tests/interactive_program.h"

namespace {

HWND Handle(DWORD_PTR number) {
    return reinterpret_cast<HWND>(number);  // NOLINT(performance-no-int-to-ptr)
}

std::vector<HWND> Walk(const CControlList& list) {
    std::vector<HWND> found;
    for (const auto* node = list.First(); node != nullptr; node = node->next) {
        EXPECT_EQ(node->prev == nullptr, found.empty());
        found.push_back(node->value);
    }
    return found;
}

TEST(ControlList, KeepsTheOrderOfAppendingAndACopyIsAView) {
    CControlList list;
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(list.Count(), 0u);
        EXPECT_EQ(list.First(), nullptr);
        EXPECT_EQ(list.ItemAt(0), nullptr);
        list.Append(Handle(7));
        {
            const CControlList view = list;
            list.Append(nullptr);
            EXPECT_EQ(view.Count(), 1u);
            EXPECT_EQ(view.First(), list.First());
        }
        list.Append(Handle(9));
        EXPECT_EQ(Walk(list), (std::vector<HWND>{Handle(7), nullptr, Handle(9)}));
        EXPECT_EQ(list.Count(), 3u);
        EXPECT_EQ(list.ItemAt(2), Handle(9));
        EXPECT_EQ(list.ItemAt(3), nullptr);
        list.Clear();
        list.Clear();
    }
}

// Every control is where the table has it, moved by the scroll position, and shown when its page
// is.
void ExpectAsInCatalogue(InteractiveProgram& program, UINT shown) {
    const FakeWindow& page = program.windows.At(g_DisplayWindow->Window());
    UINT screen = 0;
    for (const CatalogueScreen& rows : Catalogue()) {
        UINT item = 0;
        for (const CatalogueControl& row : rows.controls) {
            const FakeWindow& control = program.Control(screen, item);
            const RECT& bounds = control.bounds;
            ASSERT_EQ((std::array{bounds.left, bounds.top, bounds.right, bounds.bottom}),
                      (std::array{row.x, row.y - page.scroll.nPos, row.x + row.width,
                                  row.y - page.scroll.nPos + row.height}))
                << screen << ' ' << item;
            ASSERT_EQ(control.visible, screen == shown) << screen << ' ' << item;
            ++item;
        }
        ++screen;
    }
}

TEST(Screens, AllControlsAreMadeAsTheCatalogueHasThem) {
    constexpr std::array<DWORD, kScreenCount> kCounts = {20, 14, 1, 9, 3, 8};
    constexpr std::array<UINT, kScreenCount> kHeights = {396, 184, 22, 116, 130, 124};
    InteractiveProgram program;
    program.Run({[&] {
        ExpectAsInCatalogue(program, 0);
        WORD lastId = 50000;
        for (UINT screen = 0; screen < kScreenCount; ++screen) {
            const CControlList items = g_Screens->GetScreenItems(screen);
            ASSERT_EQ(items.Count(), kCounts[screen]);
            EXPECT_EQ(Catalogue()[screen].height, kHeights[screen]);
            for (UINT item = 0; item < items.Count(); ++item) {
                const FakeWindow& control = program.Control(screen, item);
                const CatalogueControl& row = Catalogue()[screen].controls[item];
                EXPECT_EQ(control.className, row.kind.className);
                EXPECT_EQ(control.text, row.text);
                EXPECT_EQ(control.style, row.kind.style);
                EXPECT_EQ(control.id, row.id);
                EXPECT_EQ(control.parent, g_DisplayWindow->Window());
                if (row.id != 0) {
                    EXPECT_EQ(row.id, ++lastId);
                }
            }
        }
        EXPECT_EQ(lastId, 50052);
        EXPECT_EQ(program.Control(0, 11).style, 0x50b0100bu);
        EXPECT_EQ(program.Control(0, 18).style, 0x50800000u);
        const std::vector<std::u16string> limits = {u"256 kb", u"512 kb", u"1024 kb"};
        EXPECT_EQ(program.Control(1, 6).entries,
                  (std::vector<std::u16string>{u"1024 kb", u"2048 kb", u"3072 kb"}));
        EXPECT_EQ(program.Control(1, 8).entries, limits);
        EXPECT_EQ(program.Control(1, 10).entries, limits);
        EXPECT_EQ(program.Control(1, 10).position, 0);
        EXPECT_EQ(program.Control(5, 1).highest, 2);
        EXPECT_EQ(program.Control(5, 1).position, 0);
    }});
}

// A slip in one number of the table would still look like a place. The sums of all places of a page
// are those of its drawing.
TEST(Screens, TheCatalogueAddsUp) {
    constexpr std::array<int, 4> kSums[kScreenCount] = {
        {766, 3088, 2186, 504}, {784, 1272, 1756, 414}, {2, 2, 190, 18},
        {504, 468, 1170, 162},  {6, 64, 610, 126},      {314, 406, 950, 150},
    };
    for (UINT screen = 0; screen < kScreenCount; ++screen) {
        std::array<int, 4> sums{};
        for (const CatalogueControl& row : Catalogue()[screen].controls) {
            sums = {sums[0] + row.x, sums[1] + row.y, sums[2] + row.width, sums[3] + row.height};
        }
        EXPECT_EQ(sums, kSums[screen]) << screen;
    }
}

TEST(Screens, ASwitchShowsOnePageFromItsTop) {
    InteractiveProgram program;
    program.Run({[&] {
        FakeWindow& page = program.windows.At(g_DisplayWindow->Window());
        const int client = page.bounds.bottom - page.bounds.top;
        for (const UINT screen : {2u, 2u, 5u, 0u}) {
            page.scroll.nPos = 40;
            g_Screens->SwitchScreenTo(screen);
            ExpectAsInCatalogue(program, screen);
            EXPECT_EQ(page.scroll.fMask, 15u);
            EXPECT_EQ(page.scroll.nMin, 0);
            EXPECT_EQ(page.scroll.nMax, static_cast<int>(Catalogue()[screen].height) - client);
            EXPECT_EQ(page.scroll.nPage, 3u);
            EXPECT_EQ(page.scroll.nPos, 0);
        }
    }});
}

TEST(Screens, AnUnknownIndexIsToldAndTheWorkGoesOn) {
    const std::string unknown = "[Error] CScreen::SwitchScreenTo() Unknown Screen";
    InteractiveProgram program;
    program.Run({[&] {
        g_Screens->SwitchScreenTo(6);
        EXPECT_EQ(program.windows.boxes, std::vector<std::string>{unknown});
        ExpectAsInCatalogue(program, 6);
        EXPECT_LT(program.windows.At(g_DisplayWindow->Window()).scroll.nMax, 0);
        g_Screens->SwitchScreenTo(1);
        EXPECT_EQ(program.windows.boxes, (std::vector<std::string>{unknown, unknown}));
        ExpectAsInCatalogue(program, 1);
        const CControlList first = g_Screens->GetScreenItems(0);
        EXPECT_EQ(g_Screens->GetScreenItems(6).First(), first.First());
        EXPECT_EQ(program.windows.boxes.back(), "[Error] CScreen::GetScreenItems() Unknown Screen");
        program.windows.boxes.clear();
        for (const UINT id : {0u, 50001u, 50003u, 50052u, 60000u}) {
            g_Screens->ControlCallback(id);
        }
        EXPECT_EQ(program.windows.boxes, std::vector<std::string>{});
    }});
}

}  // namespace
