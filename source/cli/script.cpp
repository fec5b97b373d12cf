#include "cli/script.h"

#include "cli/commands.h"
#include "cli/levelfiles.h"
#include "editor/blocks.h"
#include "editor/controller.h"
#include "math/camera.h"
#include "math/random.h"
#include "orvlevel/leveldump.h"
#include "platform/platform.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <locale.h>
#include <ostream>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace {

using ARGS = std::span<const std::string_view>;

struct SESSION
{
    explicit SESSION(std::ostream& out) : Out(out) {}

    CLIDOCUMENT Doc;
    ORVLEVEL& Level = Doc.Level();
    std::ostream& Out;
    CAMERA Camera;
    ORVEDITOR Editor{Doc, Camera};
};

// Ends the script at the line being run.
struct STOP
{
    int Status;
    std::string Reason;
};

[[noreturn]] void BadLine(std::string reason)
{
    throw STOP{EXIT_USAGE, std::move(reason)};
}

[[noreturn]] void Failed(std::string reason)
{
    throw STOP{1, std::move(reason)};
}

std::string Quoted(std::string_view token)
{
    return '"' + std::string(token) + '"';
}

// from_chars takes no '+'. A sign after it must stay an error, so only one
// '+' before something other than '-' goes.
std::string_view WithoutPlus(std::string_view t)
{
    if (t.starts_with('+') && !t.substr(1).starts_with('-'))
        t.remove_prefix(1);
    return t;
}

int32_t Int(std::string_view token)
{
    std::string_view t = WithoutPlus(token);
    int32_t v = 0;
    auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), v);
    if (ec == std::errc::result_out_of_range)
        BadLine("out of range: " + Quoted(token));
    if (ec != std::errc() || end != t.data() + t.size())
        BadLine("not an integer: " + Quoted(token));
    return v;
}

uint32_t Seed(std::string_view token)
{
    std::string_view t = WithoutPlus(token);
    uint32_t v = 0;
    auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), v);
    if (ec == std::errc::result_out_of_range)
        BadLine("out of range: " + Quoted(token));
    if (ec != std::errc() || end != t.data() + t.size())
        BadLine("not a seed: " + Quoted(token));
    return v;
}

// Infinities and NaNs are refused: no camera or amount makes sense with them.
float Float(std::string_view token)
{
    std::string_view t = WithoutPlus(token);
    float v = 0;
    auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), v);
    if (ec == std::errc::result_out_of_range)
        BadLine("out of range: " + Quoted(token));
    if (ec != std::errc() || end != t.data() + t.size() || !std::isfinite(v))
        BadLine("not a number: " + Quoted(token));
    return v;
}

// The new-light dialog reads its fields with strtod: any prefix that is a
// number counts, anything else is 0. The C locale keeps '.' the decimal point
// when a host program has set the user's locale.
double DialogNumber(std::string_view token)
{
    static const locale_t c = newlocale(LC_ALL_MASK, "C", locale_t(0));
    std::string text(token);
    return c ? strtod_l(text.c_str(), nullptr, c) : std::strtod(text.c_str(), nullptr);
}

void DoLoad(SESSION& s, ARGS a)
{
    std::string path(a[0]);
    if (!s.Doc.Open(path))
        Failed("cannot load " + path);
}

void DoSave(SESSION& s, ARGS a)
{
    std::string path(a[0]);
    if (!s.Doc.SaveAs(path))
        Failed("cannot save " + path);
}

// The same text as orvane-cli dump prints.
void DoDump(SESSION& s, ARGS a)
{
    std::string json = DumpLevelJson(s.Level) + '\n';
    if (a[0] == "-")
    {
        if (!s.Out.write(json.data(), std::streamsize(json.size())).flush())
            Failed("cannot write standard output");
        return;
    }
    std::string path(a[0]);
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (!f)
        Failed("cannot write " + path + ": " + std::strerror(errno));
    bool written = std::fwrite(json.data(), 1, json.size(), f) == json.size();
    if (std::fclose(f) != 0 || !written)
        Failed("cannot write " + path);
}

// Taken as they are: the level treats out-of-range values as no selection.
void DoSelect(SESSION& s, ARGS a)
{
    int32_t segment = Int(a[0]), side = Int(a[1]), point = Int(a[2]);
    s.Level.CurrentSegment = segment;
    s.Level.CurrentSide = side;
    s.Level.CurrentPoint = point;
}

void DoViewport(SESSION& s, ARGS a)
{
    int width = Int(a[0]), height = Int(a[1]);
    s.Editor.ClientWidth = width;
    s.Editor.ClientHeight = height;
    s.Camera.SetClientSize(width, height);
}

void DoCamera(SESSION& s, ARGS a)
{
    float v[12];
    for (int i = 0; i < 12; ++i)
        v[i] = Float(a[i]);
    s.Camera.Position = VECTOR3D(v[0], v[1], v[2]);
    s.Camera.ViewDir = VECTOR3D(v[3], v[4], v[5]);
    s.Camera.Up = VECTOR3D(v[6], v[7], v[8]);
    s.Camera.Right = VECTOR3D(v[9], v[10], v[11]);
}

// Unknown codes move nothing, as in the view.
void DoMove(SESSION& s, ARGS a)
{
    int op = Int(a[0]);
    float amount = Float(a[1]);
    s.Camera.Move(op, amount);
}

// Dialog and file commands belong to the window, not to the editor.
void DoCommand(SESSION& s, ARGS a)
{
    int id = Int(a[0]);
    if (!ORVEDITOR::HasCommand(id))
        BadLine("not an editor command: " + std::to_string(id));
    s.Editor.Command(id);
}

// K is what the user types into the join dialog; the dialog takes any text.
void DoJoinMode(SESSION& s, ARGS a)
{
    std::string entry(a[0]);
    auto previous = std::exchange(s.Editor.JoinDialog, [&entry] { return ORVEDITOR::ShiftFromEntry(entry.c_str()); });
    s.Editor.Command(CM_JOINMODE);
    s.Editor.JoinDialog = std::move(previous);
}

void DoFitMode(SESSION& s, ARGS)
{
    s.Editor.Command(CM_FITMODE);
}

void DoClick(SESSION& s, ARGS a)
{
    int x = Int(a[0]), y = Int(a[1]);
    s.Editor.LeftClick(x, y);
}

// Seeds the program's random generator, so a run of the game objects repeats.
void DoSrand(SESSION&, ARGS a)
{
    SRand(Seed(a[0]));
}

// The new-light dialog's OK: the light goes where the camera is.
void DoLight(SESSION& s, ARGS a)
{
    double red = DialogNumber(a[0]), green = DialogNumber(a[1]), blue = DialogNumber(a[2]);
    float brightness = float(DialogNumber(a[3]));
    s.Level.NewLight(s.Camera.Position, red, green, blue, brightness);
}

// The history as the window's "Visszavonás" and "Újra" reach it; with nothing
// to undo or redo the line is refused like a command.
void DoUndo(SESSION& s, ARGS)
{
    if (!s.Doc.History.Undo())
        InfoBeep();
}

void DoRedo(SESSION& s, ARGS)
{
    if (!s.Doc.History.Redo())
        InfoBeep();
}

// Blocks: a refused line beeps; a block file that cannot be written or read stops the script.
int Axis(std::string_view token)
{
    int axis = token.size() == 1 ? BlockAxis(token[0]) : -1;
    if (axis < 0)
        BadLine("not an axis (x, y or z): " + Quoted(token));
    return axis;
}

void DoMark(SESSION& s, ARGS a) { BlockToggleMark(s.Editor, Int(a[0])); }
void DoMarkAll(SESSION& s, ARGS) { BlockMarkAll(s.Editor); }
void DoUnmarkAll(SESSION& s, ARGS) { BlockUnmarkAll(s.Editor); }
void DoCopyBlock(SESSION& s, ARGS) { BlockCopy(s.Editor); }
void DoPasteBlock(SESSION& s, ARGS) { BlockPaste(s.Editor); }
void DoDeleteBlock(SESSION& s, ARGS) { BlockDelete(s.Editor); }
void DoMoveBlock(SESSION& s, ARGS a) { BlockMove(s.Editor, VECTOR3D(Float(a[0]), Float(a[1]), Float(a[2]))); }
void DoRotateBlock(SESSION& s, ARGS a) { BlockRotate(s.Editor, Axis(a[0]), Float(a[1])); }
void DoMirrorBlock(SESSION& s, ARGS a) { BlockMirror(s.Editor, Axis(a[0])); }
void DoSpreadTexture(SESSION& s, ARGS) { BlockSpreadTexture(s.Editor); }

void DoSaveBlock(SESSION& s, ARGS a)
{
    if (BlockSave(s.Editor, std::string(a[0])) == BLOCKFILE_FAILED)
        Failed("cannot save block " + std::string(a[0]));
}

void DoLoadBlock(SESSION& s, ARGS a)
{
    if (BlockLoad(s.Editor, std::string(a[0])) == BLOCKFILE_FAILED)
        Failed("cannot load block " + std::string(a[0]));
}

// The rest of the line, trimmed, as the one argument: paths may hold spaces.
constexpr int PATH = -1;

struct SCRIPTCOMMAND
{
    const char* Name;
    int Args; // a count, or PATH
    void (*Run)(SESSION& s, ARGS args);
};

const SCRIPTCOMMAND Commands[] = {
    {"load", PATH, DoLoad},
    {"save", PATH, DoSave},
    {"dump", PATH, DoDump}, // "-": standard output
    {"select", 3, DoSelect}, // SEGMENT SIDE POINT
    {"viewport", 2, DoViewport}, // WIDTH HEIGHT
    {"camera", 12, DoCamera}, // position, view direction, up, right
    {"move", 2, DoMove}, // OP AMOUNT
    {"command", 1, DoCommand}, // ID
    {"joinmode", 1, DoJoinMode}, // join dialog entry
    {"fitmode", 0, DoFitMode},
    {"click", 2, DoClick}, // X Y
    {"light", 4, DoLight}, // RED GREEN BLUE BRIGHTNESS
    {"srand", 1, DoSrand}, // SEED
    {"undo", 0, DoUndo},
    {"redo", 0, DoRedo},
    {"mark", 1, DoMark}, // SEGMENT
    {"markall", 0, DoMarkAll},
    {"unmarkall", 0, DoUnmarkAll},
    {"copyblock", 0, DoCopyBlock},
    {"pasteblock", 0, DoPasteBlock},
    {"deleteblock", 0, DoDeleteBlock},
    {"moveblock", 3, DoMoveBlock}, // DX DY DZ
    {"rotateblock", 2, DoRotateBlock}, // AXIS DEGREES
    {"mirrorblock", 1, DoMirrorBlock}, // AXIS
    {"saveblock", PATH, DoSaveBlock},
    {"loadblock", PATH, DoLoadBlock},
    {"spreadtexture", 0, DoSpreadTexture},
};

constexpr std::string_view SPACE = " \t\r\v\f";

std::string_view Trim(std::string_view s)
{
    size_t b = s.find_first_not_of(SPACE);
    if (b == std::string_view::npos)
        return {};
    return s.substr(b, s.find_last_not_of(SPACE) - b + 1);
}

std::vector<std::string_view> Tokens(std::string_view s)
{
    std::vector<std::string_view> tokens;
    for (size_t b = s.find_first_not_of(SPACE), e; b != std::string_view::npos; b = s.find_first_not_of(SPACE, e))
    {
        e = s.find_first_of(SPACE, b);
        tokens.push_back(s.substr(b, e - b));
    }
    return tokens;
}

std::string Expected(int n)
{
    if (n == 0)
        return "expected no arguments";
    return "expected " + std::to_string(n) + (n == 1 ? " argument" : " arguments");
}

void RunLine(SESSION& s, std::string_view line)
{
    line = line.substr(0, line.find('#'));
    std::vector<std::string_view> tokens = Tokens(line);
    if (tokens.empty())
        return;
    std::string_view name = tokens[0];
    auto c = std::find_if(std::begin(Commands), std::end(Commands), [name](const SCRIPTCOMMAND& command) { return name == command.Name; });
    if (c == std::end(Commands))
        BadLine("unknown command " + Quoted(name));
    // Every line is one action: what it changed is one step of the history.
    s.Doc.History.Begin();
    if (c->Args == PATH)
    {
        std::string_view path = Trim(line.substr(size_t(name.data() + name.size() - line.data())));
        if (path.empty())
            BadLine("expected a path");
        c->Run(s, ARGS(&path, 1));
    }
    else
    {
        if (tokens.size() - 1 != size_t(c->Args))
            BadLine(Expected(c->Args));
        c->Run(s, ARGS(tokens).subspan(1));
    }
    s.Doc.History.Checkpoint();
}

} // namespace

int RunScript(std::string_view text, std::string_view name, std::ostream& out, std::ostream& err)
{
    SESSION s{out};
    size_t number = 0;
    for (size_t pos = 0; pos < text.size();)
    {
        size_t end = std::min(text.find('\n', pos), text.size());
        std::string_view line = text.substr(pos, end - pos);
        pos = end + 1;
        ++number;
        try
        {
            RunLine(s, line);
        }
        catch (const STOP& stop)
        {
            err << "orvane-cli run: " << name << ':' << number << ": " << stop.Reason << std::endl;
            return stop.Status;
        }
    }
    return 0;
}
