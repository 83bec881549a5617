#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/AbstractCmd.h"
#include "runtime/Mutex.h"

/// Shows stored test pictures on the unit's displays and routes video inputs to them. It draws nothing
/// itself: it runs the unit's picture viewer and its display manager, one command line after the other,
/// each of which may block the dispatcher for 5 s.
///
/// A tool's exit code is not looked at: it fails when it outlives its time, is ended by a signal, or
/// cannot be started. The response that says so is passed on.
class GCmd : public AbstractCmd {
public:
    /// The unit's hardware variants, in the order in which they are looked for.
    enum variant_type { PAG, G11, G22, G24, G21 };

    static constexpr int kScreens = 3;
    /// The pictures' file names by their index.
    static const char* const test_screens[kScreens];

    static GCmd* getInstance();

    ProcessResponse* process(std::vector<std::vector<char>>& tokens) override {
        return run(tokens).release();
    }
    ProcessResponse* process(std::vector<unsigned char>* request) override {
        return run(request).release();
    }

    /// The outputs for pictures and for video, and the video inputs, that this unit has.
    bool isOutChannelValid(unsigned char channel) const;
    static bool isOutChannelForVideoValid(unsigned char channel);
    static bool isInChannelValid(unsigned char channel);

    /// Starts the viewer unless it runs and shows a picture. The viewer is left running, or ended when
    /// it could not be made to show the picture.
    ProcessResponse displayTestImage(unsigned char channel, unsigned char index);
    /// Ends the viewer, if it runs, and routes a video input to an output.
    ProcessResponse captureFrame(unsigned char input, unsigned char output);

    /// Puts a black layer on a display that shows video; does nothing to any other.
    ProcessResponse switchToBlack(unsigned char display);
    ProcessResponse quitShowimage();

    /// Sets, in the daemon's own environment, what the tools need to find their libraries and files.
    static ProcessResponse setEnvVar();

    /// Unpacks a picture unless it lies there unpacked. `index` must be that of a picture; `path` is set
    /// on success only.
    ProcessResponse unzipTestScreen(int index, std::string& path);
    /// 0 on success, else the reason is kept as the last unpacking error.
    int unzipFile(const char* source, const char* destination);

    /// The variant that the unit's image version names; the default one, with a line on standard error,
    /// when it names none.
    variant_type getVariant() const;

    /// Runs one command line, for at most 5 s.
    static ProcessResponse executeStringStream(std::string* commandLine);

private:
    /// How a video input gets to a display: through a layer, which is made once per process.
    struct Route {
        unsigned char input;
        const char* makeLayer; ///< arguments of the display manager
        const char* layer;
        bool GCmd::*isPrepared;
        bool isRetried; ///< whether the next request tries again when the layer could not be made
    };

    GCmd();

    Answer run(const std::vector<std::vector<char>>& tokens);
    Answer run(const std::vector<unsigned char>* request);

    static const Route* findRoute(unsigned char input);

    ProcessResponse startViewer();
    /// Hides both layers of the viewer, selects the picture and shows it.
    ProcessResponse showPicture(unsigned char index, unsigned char display);
    /// Runs a one-time command of the display manager, unless it has been issued.
    ProcessResponse makeLayer(bool& isPrepared, const char* arguments, bool isRetried);

    variant_type m_variant = PAG;
    std::map<variant_type, std::string> m_variants;
    bool m_isViewerRunning = false;
    bool m_isInput3Prepared = false;
    bool m_isInput0Prepared = false;
    bool m_isInput2Prepared = false;
    bool m_isBlackPrepared = false;
    std::string m_lastUnpackingError;

    static System::Mutex s_singleton_mutex;
};
