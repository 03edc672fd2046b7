// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <map>
#include <string>
#include <vector>

#include "host/cleaner.h"
#include "module/cleaner/mesh_index.h"
#include "platform/windows.h"

namespace zrt {
struct Operation;
}

// The scene cleaner. A run takes its scene, context and record from the fields, so that one object serves
// one run at a time; Invoke makes an object of its own for each call.
class CCleanerImpl : public zr_CLEANER {
public:
    // Switches by option id; an id that was never set is off.
    class CI2BMap : private std::map<long, bool> {
    public:
        virtual ~CI2BMap() = default;
        void Set(long id, bool on) { (*this)[id] = on; }
        void Clear() { clear(); }
        bool IsOn(long id) const {
            const auto found = find(id);
            return found != end() && found->second;
        }
    };

    CCleanerImpl() = default;

    vl::ResultEnum QueryInfo(vl::xml::Element* element, unsigned flags) override;
    vl::ResultEnum Invoke(int method, vl::Params* params, vl::Context* context) override;

    bool RunDialog(vl::zr::Scene* scene) override;
    int RemoveUnusedAnimations(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) override;
    int RemoveUnusedMaterials(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) override;
    int RemoveEmptyNodes(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) override;
    int RemoveUnusedLayers(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) override;
    int RemoveMetadata(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) override;
    int RemoveModelViews(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) override;
    int RemoveNotesAndEtc(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) override;
    int RemoveMeshDupes(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) override;

    // Touches a window: on the interface thread only.
    virtual int RemoveEnvMapsAndBackplates(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record);

    // Reads the options and runs them on this object. Always true.
    virtual bool CleanScene(vl::Params* params, vl::Context* context);

    // The scene's own operation in the form of the others; context and record are not used.
    int MergeEqualMaterials(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record);

protected:
    DWORD m_dwCallLimit = 15000;  // milliseconds that a call handed to the interface thread may wait

private:
    void DeleteThis() override { delete this; }

    // A null list is an empty one: no scene, every option on.
    void ReadOptions(vl::Params* params);
    bool RunOperations(vl::Context* context);

    // The nodes that repeat an earlier one's mesh at its place, in the order of the scene's list.
    std::vector<vl::zr::Node*> DuplicateMeshes(vl::Array* nodes, const vl::Context* context);

    // The dialog, on the interface thread (dialog.cpp).
    static INT_PTR CALLBACK DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    bool HandleCommand(int command, LPARAM parameter);
    void InitDialog(HWND dialog);
    void StartRun();
    void ShowRunning();
    void ShowFinished();
    void ShowLog();
    void RunEnvironmentCall();
    void FinishRun();

    // Its worker thread (worker.cpp).
    static DWORD WINAPI WorkerProc(LPVOID object);
    void RunWorker();
    int RunInWorker(const zrt::Operation& operation);
    void AppendLog(const char16_t* text, bool lineEnd);
    void AppendLogFormat(bool lineEnd, const char16_t* format, int value);
    bool CallOnInterfaceThread();
    LRESULT SendCommand(int command, LPARAM parameter);

    // One call that the worker hands to the interface thread. The time-out and the start of the call may
    // coincide: whoever takes the call out of kPending decides.
    enum class InterfaceCall { kNone, kPending, kTaken, kAbandoned };

    vl::zr::Scene* m_pScene = nullptr;     // of the current run; not owned
    vl::Context* m_pContext = nullptr;     // of the current run; owned while the dialog is open
    ChangeRecord* m_pRecord = nullptr;     // of a dialog's run
    HWND m_hDlg = nullptr;                 // while the dialog is open
    HANDLE m_hThread = nullptr;            // the worker of a dialog's run
    std::atomic<bool> m_bRunning = false;  // while the worker runs
    std::u16string m_strLog;               // text of the dialog's log
    CI2BMap m_options;                     // by option id (Operation::option)
    zrt::MeshIndex m_dupIndex;             // meshes seen by RemoveMeshDupes; empty between runs
    HANDLE m_hEvent = nullptr;             // of one call handed to the interface thread
    std::atomic<InterfaceCall> m_call = InterfaceCall::kNone;
    bool m_bStarted = false;  // a run was started in this dialog; interface thread only
};

// A new cleaner whose one count belongs to the caller, or null when there is no memory.
CCleanerImpl* CreateCleaner();
