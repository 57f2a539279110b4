#include "host/standalone/EditorProgram.h"

#include "editor/CLooperView.h"
#include "editor/EditorModule.h"
#include "effect/CLooper.h"
#include "host/bridge/UserLibrary.h"
#include "host/cli/CommandError.h"
#include "host/cli/LibraryFolder.h"
#include "host/standalone/RunningTransport.h"
#include "library/PatternTree.h"
#include "platform/toolkit/EventLoop.h"
#include "platform/toolkit/Look.h"
#include "shared/System/kvModule.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>

namespace fs = std::filesystem;

namespace {

constexpr int kTicksPerQuarter = 3840;

class RunningLoop
{
public:
    RunningLoop()
    {
        if (toolkit::EventLoop::start() != toolkit::noErr)
            throw CommandError(ExitCode::NoDisplay, "the message loop cannot be started");
    }

    RunningLoop(const RunningLoop&) = delete;
    RunningLoop& operator=(const RunningLoop&) = delete;

    ~RunningLoop() { toolkit::EventLoop::stop(); }
};

/// Ends the program with the window.
class QuitOnClose final : public EditorCloseNotifier
{
public:
    std::int32_t keepRef() override { return 1; }

    std::int32_t releaseRef() override { return 1; }

    void editorClosed() override { toolkit::EventLoop::quit(); }
};

toolkit::Appearance appearanceOf(const std::string& name)
{
    if (name == "dark")
        return toolkit::Appearance::dark;
    return name == "light" ? toolkit::Appearance::light : toolkit::Appearance::followDesktop;
}

/// The pattern's place in the library, or nothing when it lies elsewhere.
fs::path pathInLibrary(const std::string& file, const std::string& library)
{
    std::error_code error;
    const fs::path relative = fs::relative(file, library, error);
    return error || relative.empty() || *relative.begin() == ".." ? fs::path() : relative;
}

void choosePattern(CLooper& effect, const std::string& file, const std::string& library)
{
    if (const fs::path inLibrary = pathInLibrary(file, library); !inLibrary.empty()) {
        std::string style = inLibrary.parent_path();
        std::replace(style.begin(), style.end(), '/', '\\');
        effect.ChangePattern(style.c_str(), inLibrary.filename().c_str());
        return;
    }
    IKVSSExStrumwerks::Pattern pattern{};
    const std::string name =
        std::string(IKVSSExStrumwerks::Pattern::fileScheme) + fs::absolute(file).string();
    std::strncpy(pattern.name, name.c_str(), sizeof pattern.name - 1);
    if (!effect.SetCurrentPattern(&pattern))
        throw CommandError(ExitCode::BadPattern, file + ": is no pattern, or its path is too long");
}

void connect(CLooper& effect, HostContext& time, const EditorOptions& options)
{
    const std::string library =
        options.library.empty() ? chooseLibrary(effect.GetPatternsDir().c_str(), factoryLibrary())
                                : options.library;
    effect.SetPatternsDir(library.c_str());
    effect.Initialize(&time);
    effect.Enable();
    if (!options.pattern.empty())
        choosePattern(effect, findPattern(options.pattern, library), library);
}

void savePicture(const CLooperView& view, const std::string& path)
{
    // Until the cursor has moved a little and everything is drawn.
    toolkit::EventLoop::runUntil([] { return false; }, 600);
    if (view.window() == nullptr || view.window()->savePicture(path) != toolkit::noErr)
        throw CommandError(ExitCode::CannotWrite, path + ": the picture cannot be written");
}

} // namespace

void runEditor(const EditorOptions& options)
{
    Korvanel::Module::Init("Looper", "");
    installEditor();
    const RunningLoop loop;
    toolkit::setAppearance(appearanceOf(options.appearance));
    HostContext time(kTicksPerQuarter, options.tempo, {4, 4});
    CLooper effect;
    connect(effect, time, options);

    QuitOnClose onClose;
    EditorHostInfo host{&onClose, nullptr};
    CLooperView view(&effect);
    if (const std::int32_t status = view.attach(&host, 0, 0); status != toolkit::noErr)
        throw CommandError(ExitCode::NoDisplay,
                           status == toolkit::noDisplayErr
                               ? "there is no display to open a window on"
                               : "the window cannot be opened: error " + std::to_string(status));
    view.window()->setScale(options.scale);
    {
        const RunningTransport transport(effect, time);
        if (options.picture.empty())
            toolkit::EventLoop::run();
        else
            savePicture(view, options.picture);
    }
    view.remove();
    effect.Terminate();
}
