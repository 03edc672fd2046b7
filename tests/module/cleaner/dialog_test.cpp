// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#ifdef __linux__
#include <pthread.h>
#endif

#include <algorithm>
#include <atomic>
#include <functional>
#include <new>
#include <thread>

#include "app/services/strings.h"
#include "host/ref.h"
#include "kernix/host_app_base.h"
#include "kernix/scene/change_record_model.h"
#include "kernix/scene/scene_model.h"
#include "module/cleaner/cleaner.h"
#include "module/cleaner/operations.h"
#include "module/frame/globals.h"
#include "module/resources/resource.h"
#include "tests/platform/ui_driver.h"

// Drives the real dialog and its worker: the steps of a test run in the dialog's event loop, and the
// operations are replaced by the test's own, so that it controls how far a run has come.
namespace {

using namespace std::chrono_literals;
using driver::Key;
using driver::Place;
using Lines = std::vector<std::u16string>;

class DialogHost : public kernix::HostAppBase {
public:
    explicit DialogHost(const char* language) : HostAppBase(language) {
        g_pHost = this;
        g_hStrings = LoadModuleStrings(nullptr);
    }

    void LocalizeDialog(void* table, HWND dialog) override {
        zr::LocalizeDialog(*static_cast<const kernix::ModuleStrings*>(table), dialog);
    }
    void ShowHelpTopic(const char* page, int) override { m_helpPages.push_back(page); }

    std::vector<std::string> m_helpPages;
};

// A cleaner whose operations are the test's.
class ScriptedCleaner final : public CCleanerImpl {
public:
    std::function<int(int option, ChangeRecord* record)> m_work = [](int, ChangeRecord*) { return 0; };
    void SetCallLimit(DWORD milliseconds) { m_dwCallLimit = milliseconds; }

    int RemoveUnusedAnimations(vl::zr::Scene*, vl::Context*, ChangeRecord* r) override {
        return m_work(1010, r);
    }
    int RemoveUnusedMaterials(vl::zr::Scene*, vl::Context*, ChangeRecord* r) override {
        return m_work(1003, r);
    }
    int RemoveEmptyNodes(vl::zr::Scene*, vl::Context*, ChangeRecord* r) override { return m_work(1009, r); }
    int RemoveUnusedLayers(vl::zr::Scene*, vl::Context*, ChangeRecord* r) override { return m_work(1006, r); }
    int RemoveMetadata(vl::zr::Scene*, vl::Context*, ChangeRecord* r) override { return m_work(1004, r); }
    int RemoveModelViews(vl::zr::Scene*, vl::Context*, ChangeRecord* r) override { return m_work(1005, r); }
    int RemoveNotesAndEtc(vl::zr::Scene*, vl::Context*, ChangeRecord* r) override { return m_work(1008, r); }
    int RemoveMeshDupes(vl::zr::Scene*, vl::Context*, ChangeRecord* r) override { return m_work(1007, r); }
    int RemoveEnvMapsAndBackplates(vl::zr::Scene*, vl::Context*, ChangeRecord* r) override {
        return m_work(1012, r);
    }
};

class CleanerDialogTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_EQ(driver::Start(), ""); }

    CleanerDialogTest() {
        m_scene->m_onRefresh = [this] { ++m_refreshes; };
    }
    ~CleanerDialogTest() override {
        g_pHost = nullptr;
        g_hStrings = nullptr;
    }

    // Opens the dialog and runs the steps in it; the last one must close it.
    void Open(const std::function<void()>& steps) {
        bool ran = false;
        driver::WhenDialogOpens([&] {
            EXPECT_TRUE(m_scene->IsModal());
            ran = true;
            steps();
        });
        EXPECT_FALSE(m_cleaner->RunDialog(m_scene.Get()));
        EXPECT_TRUE(ran);
        EXPECT_FALSE(driver::HasDialog());
        EXPECT_FALSE(m_scene->IsModal());
    }

    static void CheckOnly(std::initializer_list<int> options) {
        for (const zrt::Operation& operation : zrt::kOperations) {
            const bool on = std::find(options.begin(), options.end(), operation.option) != options.end();
            driver::SetChecked(operation.option, on);
        }
    }

    static bool WaitForEnd() {
        return driver::WaitFor([] { return driver::IsVisible(IDC_CLOSE); });
    }

    static Lines Log() {
        Lines lines;
        std::u16string text = driver::Text(IDC_LOG);
        while (!text.empty()) {
            const std::size_t end = std::min(text.find(u'\n'), text.size());
            lines.push_back(text.substr(0, end));
            text.erase(0, end + 1);
        }
        return lines;
    }

    DialogHost m_host{"en"};
    vl::Ref<kernix::SceneModel> m_scene = vl::Ref<kernix::SceneModel>::Adopt(new kernix::SceneModel);
    vl::Ref<ScriptedCleaner> m_cleaner = vl::Ref<ScriptedCleaner>::Adopt(new ScriptedCleaner);
    int m_refreshes = 0;
};

TEST_F(CleanerDialogTest, WithoutASceneNothingHappens) {
    EXPECT_FALSE(m_cleaner->RunDialog(nullptr));
}

TEST_F(CleanerDialogTest, OpensWithEveryOptionOnAndClosesOnCancel) {
    Open([&] {
        for (const zrt::Operation& operation : zrt::kOperations) {
            EXPECT_TRUE(driver::IsChecked(operation.option));
            EXPECT_TRUE(driver::IsEnabled(operation.option));
        }
        for (const int id : {IDC_PROGRESS, IDC_LOG, IDC_BREAK}) EXPECT_FALSE(driver::IsVisible(id));
        driver::Click(IDC_CLOSE);
    });
    EXPECT_EQ(m_refreshes, 1);
    Open([&] { driver::Press(Key::kEscape); });
    EXPECT_EQ(m_refreshes, 2);
}

TEST_F(CleanerDialogTest, CaptionsComeInTheUsersLanguage) {
    const auto captions = [this](const char* language) {
        const DialogHost host(language);
        Lines texts;
        Open([&] {
            texts = {driver::Title(),           driver::Text(IDC_METADATA), driver::Text(IDC_ENVIRONMENT),
                     driver::Text(IDC_PROCESS), driver::Text(IDC_CLOSE),    driver::Text(IDC_HELP_PAGE)};
            driver::Click(IDC_CLOSE);
        });
        return texts;
    };
    const std::u16string englishEnvironment = u"Environment maps and backplates";
    EXPECT_EQ(captions("de"),
              (Lines{u"Nicht verwendete Szenenobjekte entfernen ...", u"Metadaten",
                     u"Umgebungskarten und Rückenplatten", u"Prozess", u"Abbrechen", u"Hilfe"}));
    EXPECT_EQ(captions("fr"),
              (Lines{u"Supprimer les objets de la scène non utilisés…", u"Toute métadonnée",
                     u"Cartes d’environnement et panneaux arrière", u"Processus", u"Annuler", u"Aide"}));
    EXPECT_EQ(captions("zh"), (Lines{u"Remove unused scene objects ...", u"Metadata", englishEnvironment,
                                     u"Process", u"Cancel", u"Help"}));
    for (const char* language : {"en", "ja"}) {
        EXPECT_EQ(captions(language), (Lines{u"Remove unused scene objects ...", u"Any metadata",
                                             englishEnvironment, u"Process", u"Cancel", u"Help"}));
    }
}

TEST_F(CleanerDialogTest, FullRunLogsEveryOperationInOrder) {
    vl::Ref<ChangeRecord> record;
    m_cleaner->m_work = [&](int option, ChangeRecord* given) {
        if (!record) record = vl::Ref<ChangeRecord>::Share(given);
        EXPECT_EQ(given, record.Get());
        EXPECT_EQ(option == 1012, driver::IsWindowThread());
        return option - 1000;
    };
    Open([&] {
        const Place options = driver::PlaceOf(IDC_OPTIONS);
        const Place log = driver::PlaceOf(IDC_LOG);
        const Place breakPlace = driver::PlaceOf(IDC_BREAK);
        const Place closePlace = driver::PlaceOf(IDC_CLOSE);
        driver::Click(IDC_PROCESS);
        ASSERT_TRUE(WaitForEnd());
        EXPECT_EQ(
            Log(),
            (Lines{u"run cleaning scene;", u"remove metadata: 4 deleted;",
                   u"remove duplicated materials: 0 deleted;", u"remove geometry dupes: 7 deleted;",
                   u"remove empty nodes: 9 deleted;", u"remove modelviews and portfolios: 5 deleted;",
                   u"remove unused layers: 6 deleted;", u"remove notes, callouts and annotations: 8 deleted;",
                   u"remove unused materials: 3 deleted;",
                   u"cleaning unused animation sequences: 10 deleted;",
                   u"remove environment map and backplates: 1 deleted;", u"cleaning scene finished;"}));
        EXPECT_EQ(driver::PlaceOf(IDC_LOG), (Place{options.x, log.y, options.width, log.height}));
        EXPECT_EQ(driver::PlaceOf(IDC_CLOSE),
                  (Place{breakPlace.x, breakPlace.y, closePlace.width, closePlace.height}));
        EXPECT_EQ(driver::Text(IDC_CLOSE), u"Close");
        EXPECT_EQ(driver::FocusedId(), IDC_CLOSE);
        for (const int id : {IDC_PROCESS, IDC_BREAK, IDC_PROGRESS, IDC_OPTIONS, IDC_METADATA}) {
            EXPECT_FALSE(driver::IsVisible(id)) << id;
        }
        driver::Press(Key::kSpace);
    });
    const auto& kept = static_cast<kernix::ChangeRecordModel&>(*record);
    EXPECT_EQ(kept.GetCaption(), u"Cleaning scene");
    EXPECT_FALSE(kept.IsOpen());
    EXPECT_EQ(record->GetRefCount(), 1);
}

TEST_F(CleanerDialogTest, FrenchLogKeepsItsBlanks) {
    const DialogHost host("fr");
    Open([&] {
        CheckOnly({1003, 1012});
        driver::Click(IDC_PROCESS);
        ASSERT_TRUE(WaitForEnd());
        EXPECT_EQ(Log(),
                  (Lines{u"exécuter le nettoyage de la scène ;",
                         u"supprimer les matières non utilisées : 0 supprimé ;",
                         u"supprimer les cartes d’environnement et les panneaux arrière : 1 supprimé ;",
                         u"nettoyage de la scène terminé ;"}));
        EXPECT_EQ(driver::Text(IDC_CLOSE), u"Fermer");
        driver::Click(IDC_CLOSE);
    });
}

TEST_F(CleanerDialogTest, ProgressStandsAtTheLastOperationThatRan) {
    Open([&] {
        CheckOnly({1006});
        driver::Click(IDC_PROCESS);
        ASSERT_TRUE(WaitForEnd());
        EXPECT_EQ(Log(), (Lines{u"run cleaning scene;", u"remove unused layers: 0 deleted;",
                                u"cleaning scene finished;"}));
        EXPECT_EQ(driver::ProgressOf(IDC_PROGRESS).value, 5);
        EXPECT_EQ(driver::ProgressOf(IDC_PROGRESS).maximum, 9);
        driver::Click(IDC_CLOSE);
    });
}

// The log of an object continues from dialog to dialog.
TEST_F(CleanerDialogTest, EmptyRunsOneAfterAnotherContinueTheLog) {
    const Lines once = {u"run cleaning scene;", u"cleaning scene finished;"};
    for (int run = 1; run <= 3; ++run) {
        Open([&] {
            CheckOnly({});
            driver::Click(IDC_PROCESS);
            ASSERT_TRUE(WaitForEnd());
            EXPECT_EQ(driver::ProgressOf(IDC_PROGRESS).value, 0);
            Lines expected;
            for (int i = 0; i < run; ++i) expected.insert(expected.end(), once.begin(), once.end());
            EXPECT_EQ(Log(), expected);
            driver::Press(Key::kEscape);
        });
    }
    EXPECT_EQ(m_refreshes, 3);
}

TEST_F(CleanerDialogTest, BreakEndsTheRunAndNothingElseDoes) {
    std::atomic<bool> proceed = false;
    std::atomic<int> calls = 0;
    m_cleaner->m_work = [&](int, ChangeRecord*) {
        ++calls;
        while (!proceed) std::this_thread::sleep_for(1ms);
        return 1;
    };
    Open([&] {
        driver::Click(IDC_PROCESS);
        EXPECT_EQ(driver::FocusedId(), IDC_BREAK);
        ASSERT_TRUE(driver::WaitFor([&] { return calls == 1; }));
        for (const int id : {IDC_PROGRESS, IDC_LOG, IDC_BREAK}) EXPECT_TRUE(driver::IsVisible(id));
        for (const int id : {IDC_PROCESS, IDC_CLOSE, IDC_HELP_PAGE, IDC_OPTIONS})
            EXPECT_FALSE(driver::IsVisible(id));
        EXPECT_EQ(Log(), (Lines{u"run cleaning scene;", u"remove metadata"}));
        // The dialog stays, and no second run starts.
        driver::Press(Key::kEscape);
        driver::CloseDialog();
        driver::SetEnabled(IDC_PROCESS, true);
        driver::Trigger(IDC_PROCESS);
        EXPECT_TRUE(driver::HasDialog());
        driver::Click(IDC_BREAK);
        EXPECT_FALSE(driver::IsEnabled(IDC_BREAK));
        driver::Press(Key::kEscape);
        proceed = true;
        ASSERT_TRUE(WaitForEnd());
        EXPECT_EQ(Log(),
                  (Lines{u"run cleaning scene;", u"remove metadata: 1 deleted;", u"breaked by customer;"}));
        driver::Trigger(IDC_PROCESS);
        EXPECT_TRUE(driver::IsVisible(IDC_CLOSE));
        driver::Press(Key::kEscape);
    });
    EXPECT_EQ(calls, 1);
}

// The interface thread stalls past the limit: the call that it finds afterwards is dropped.
TEST_F(CleanerDialogTest, LateCallIsDropped) {
    bool called = false;
    m_cleaner->SetCallLimit(30);
    m_cleaner->m_work = [&](int, ChangeRecord*) {
        called = true;
        return 0;
    };
    Open([&] {
        CheckOnly({1012});
        // Queued while the worker waits for this line to be shown, so ahead of the call that it posts next.
        driver::OnTextChange(IDC_LOG, [] {
            if (!driver::Text(IDC_LOG).ends_with(u"backplates")) return;
            driver::Post([] { std::this_thread::sleep_for(150ms); });
        });
        driver::Click(IDC_PROCESS);
        ASSERT_TRUE(WaitForEnd());
        EXPECT_EQ(Log(), (Lines{u"run cleaning scene;", u"remove environment map and backplates: 0 deleted;",
                                u"cleaning scene finished;"}));
        driver::Click(IDC_CLOSE);
    });
    EXPECT_FALSE(called);
}

// The call begins in time and outlasts the limit: it counts 0, and the record stays open until it is over.
TEST_F(CleanerDialogTest, SlowCallCountsNothingAndKeepsTheRecordOpen) {
    bool wasOpen = false;
    m_cleaner->SetCallLimit(200);
    m_cleaner->m_work = [&](int, ChangeRecord* record) {
        std::this_thread::sleep_for(400ms);
        wasOpen = static_cast<kernix::ChangeRecordModel*>(record)->IsOpen();
        return 5;
    };
    Open([&] {
        CheckOnly({1012});
        driver::Click(IDC_PROCESS);
        ASSERT_TRUE(WaitForEnd());
        EXPECT_EQ(Log(), (Lines{u"run cleaning scene;", u"remove environment map and backplates: 0 deleted;",
                                u"cleaning scene finished;"}));
        driver::Click(IDC_CLOSE);
    });
    EXPECT_TRUE(wasOpen);
}

// Memory runs out on the worker's thread, here in the host: the run ends without another message.
TEST_F(CleanerDialogTest, RunThatFailsStillEnds) {
    class FailingHost final : public DialogHost {
    public:
        FailingHost() : DialogHost("en") {}
        const char16_t* GetModuleString(void* table, int id) override {
            constexpr int kSecondOperation = 1181;
            if (id == kSecondOperation) throw std::bad_alloc();
            return DialogHost::GetModuleString(table, id);
        }
    };
    const FailingHost host;
    vl::Ref<ChangeRecord> record;
    m_cleaner->m_work = [&](int, ChangeRecord* given) {
        record = vl::Ref<ChangeRecord>::Share(given);
        return 2;
    };
    Open([&] {
        driver::Click(IDC_PROCESS);
        ASSERT_TRUE(WaitForEnd());
        EXPECT_EQ(Log(), (Lines{u"run cleaning scene;", u"remove metadata: 2 deleted;"}));
        driver::Click(IDC_CLOSE);
    });
    EXPECT_FALSE(static_cast<kernix::ChangeRecordModel&>(*record).IsOpen());
    EXPECT_EQ(record->GetRefCount(), 1);
}

TEST_F(CleanerDialogTest, WithoutARecordNothingRuns) {
    class Scene final : public kernix::SceneModel {
    public:
        ChangeRecord* CreateChangeRecord(int) override { return nullptr; }
    };
    m_scene = vl::Ref<kernix::SceneModel>::Adopt(new Scene);
    m_cleaner->m_work = [](int, ChangeRecord*) {
        ADD_FAILURE();
        return 0;
    };
    Open([&] {
        driver::Click(IDC_PROCESS);
        ASSERT_TRUE(WaitForEnd());
        EXPECT_EQ(Log(), Lines{});
        driver::Click(IDC_CLOSE);
    });
}

#ifdef __linux__

// The system refuses to create the thread, here for a stack larger than memory: the run ends before it
// begins.
TEST_F(CleanerDialogTest, WithoutAThreadTheDialogCanBeClosed) {
    pthread_attr_t usual;
    pthread_attr_t huge;
    ASSERT_EQ(pthread_getattr_default_np(&usual), 0);
    ASSERT_EQ(pthread_attr_init(&huge), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&huge, std::size_t{1} << 46), 0);
    Open([&] {
        ASSERT_EQ(pthread_setattr_default_np(&huge), 0);
        driver::Click(IDC_PROCESS);
        pthread_setattr_default_np(&usual);
        EXPECT_TRUE(driver::IsVisible(IDC_CLOSE));
        EXPECT_EQ(driver::Text(IDC_CLOSE), u"Close");
        EXPECT_FALSE(driver::IsVisible(IDC_BREAK));
        driver::Press(Key::kEscape);
    });
    pthread_attr_destroy(&huge);
    pthread_attr_destroy(&usual);
}

#endif

TEST_F(CleanerDialogTest, HelpLeavesTheDialogAsItIs) {
    Open([&] {
        driver::Press(Key::kF1);
        driver::Click(IDC_HELP_PAGE);
        EXPECT_TRUE(driver::IsVisible(IDC_PROCESS));
        driver::Click(IDC_CLOSE);
    });
    EXPECT_EQ(m_host.m_helpPages,
              (std::vector<std::string>{"flush_unused_objects.htm", "flush_unused_objects.htm"}));
}

}  // namespace
