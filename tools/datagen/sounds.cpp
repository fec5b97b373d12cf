// The four sound effects and the information beep, synthesised as 22050 Hz
// mono 16-bit PCM wave files. Noise comes from a fixed-seed generator, so every build writes the same
// bytes.
#include "datagen.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr int RATE = 22050;
constexpr double TWO_PI = 6.283185307179586;

struct NOISE
{
    uint32_t State;
    explicit NOISE(uint32_t seed) : State(seed) {}
    // -1 ... 1
    double Next()
    {
        State = State * 1664525u + 1013904223u;
        return double(State >> 8) / 8388608.0 - 1.0;
    }
    // 0 ... 1
    double Unit() { return (Next() + 1.0) * 0.5; }
};

// Scales the sound so that its loudest sample reaches `peak`.
void Normalise(std::vector<double>& s, double peak)
{
    double top = 0.0;
    for (double v : s)
        top = std::fmax(top, std::fabs(v));
    if (top > 0.0)
        for (double& v : s)
            v *= peak / top;
}

// A short fade at both ends, so that no sound starts or stops with a click.
double Edges(double t, double length, double fadeIn, double fadeOut)
{
    double g = 1.0;
    if (t < fadeIn)
        g *= t / fadeIn;
    if (t > length - fadeOut)
        g *= std::fmax(0.0, (length - t) / fadeOut);
    return g;
}

// A falling zap: a bright buzz whose pitch drops fast.
std::vector<double> LaserShot()
{
    const double length = 0.28;
    std::vector<double> s(size_t(length * RATE));
    double phase = 0.0;
    for (size_t i = 0; i < s.size(); ++i) {
        double t = double(i) / RATE;
        double f = 1900.0 * std::exp(-t * 11.0) + 240.0;
        phase += TWO_PI * f / RATE;
        double buzz = std::tanh(3.0 * std::sin(phase)) * 0.6 + std::sin(2.0 * phase) * 0.25;
        s[i] = 0.7 * buzz * std::exp(-t * 8.0) * Edges(t, length, 0.003, 0.02);
    }
    return s;
}

// A blast: a thump and crackle over noise that darkens as it dies away.
std::vector<double> Explosion()
{
    const double length = 1.4;
    std::vector<double> s(size_t(length * RATE));
    NOISE noise(0x0E1F00Du);
    double low = 0.0, lower = 0.0;
    for (size_t i = 0; i < s.size(); ++i) {
        double t = double(i) / RATE;
        // One-pole low-pass filters whose cut-off falls with time.
        double k = 0.35 * std::exp(-t * 2.5) + 0.02;
        low += k * (noise.Next() - low);
        lower += 0.5 * k * (low - lower);
        double thump = std::sin(TWO_PI * (55.0 - 20.0 * t) * t) * std::exp(-t * 6.0);
        double crackle = (t < 0.5 && noise.Unit() > 0.9985) ? noise.Next() * 1.5 : 0.0;
        double body = (1.6 * low + 2.2 * lower) * std::exp(-t * 2.6);
        s[i] = (0.55 * body + 0.5 * thump + crackle * std::exp(-t * 4.0)) * Edges(t, length, 0.004, 0.1);
    }
    Normalise(s, 0.9);
    return s;
}

// A rocket motor that loops without a seam: every component completes a
// whole number of cycles in the one-second file, so the last sample runs
// straight into the first.
std::vector<double> Missile()
{
    const int n = RATE; // one second
    std::vector<double> s(n, 0.0);
    NOISE noise(0x7E3A51u);
    struct PARTIAL
    {
        double Frequency, Amplitude, Phase;
    };
    std::vector<PARTIAL> partials;
    for (int f = 30; f <= 600; f += 7)
        partials.push_back({double(f), 0.6 / std::sqrt(double(f)), noise.Unit() * TWO_PI});
    for (int f = 1000; f <= 4000; f += 37)
        partials.push_back({double(f), 0.012, noise.Unit() * TWO_PI});
    for (int i = 0; i < n; ++i) {
        double t = double(i) / RATE;
        double v = 0.0;
        for (const PARTIAL& p : partials)
            v += p.Amplitude * std::sin(TWO_PI * p.Frequency * t + p.Phase);
        double hum = 0.18 * std::sin(TWO_PI * 90.0 * t) + 0.08 * std::sin(TWO_PI * 180.0 * t);
        double flutter = 1.0 + 0.15 * std::sin(TWO_PI * 6.0 * t);
        s[i] = (v + hum) * flutter;
    }
    Normalise(s, 0.5);
    return s;
}

// A rising four-note chime.
std::vector<double> Powerup()
{
    const double notes[] = {523.25, 659.25, 783.99, 1046.50};
    const double step = 0.09;
    const double length = 0.6;
    std::vector<double> s(size_t(length * RATE), 0.0);
    for (int k = 0; k < 4; ++k) {
        double start = k * step;
        double ring = (k == 3) ? length - start : step * 2.0;
        for (size_t i = size_t(start * RATE); i < s.size(); ++i) {
            double t = double(i) / RATE - start;
            if (t >= ring)
                break;
            double f = notes[k] * (1.0 + 0.004 * std::sin(TWO_PI * 7.0 * t));
            double tone = std::sin(TWO_PI * f * t) + 0.3 * std::sin(TWO_PI * 2.0 * f * t);
            s[i] += 0.3 * tone * std::exp(-t * 7.0) * Edges(t, ring, 0.004, 0.03);
        }
    }
    return s;
}

// The information beep: a short, soft two-partial tone.
std::vector<double> Beep()
{
    const double length = 0.12;
    std::vector<double> s(size_t(length * RATE));
    for (size_t i = 0; i < s.size(); ++i) {
        double t = double(i) / RATE;
        double tone = std::sin(TWO_PI * 880.0 * t) + 0.25 * std::sin(TWO_PI * 1760.0 * t);
        s[i] = 0.35 * tone * Edges(t, length, 0.005, 0.04);
    }
    return s;
}

void Put16(std::vector<uint8_t>& b, uint16_t v)
{
    b.push_back(uint8_t(v));
    b.push_back(uint8_t(v >> 8));
}

void Put32(std::vector<uint8_t>& b, uint32_t v)
{
    Put16(b, uint16_t(v));
    Put16(b, uint16_t(v >> 16));
}

void PutId(std::vector<uint8_t>& b, const char* id)
{
    for (int i = 0; i < 4; ++i)
        b.push_back(uint8_t(id[i]));
}

std::vector<uint8_t> Encode(const std::vector<double>& samples)
{
    uint32_t dataSize = uint32_t(samples.size() * 2);
    std::vector<uint8_t> b;
    b.reserve(44 + dataSize);
    PutId(b, "RIFF");
    Put32(b, 4 + 8 + 16 + 8 + dataSize);
    PutId(b, "WAVE");
    PutId(b, "fmt ");
    Put32(b, 16);
    Put16(b, 1); // PCM
    Put16(b, 1); // mono
    Put32(b, RATE);
    Put32(b, RATE * 2);
    Put16(b, 2);
    Put16(b, 16);
    PutId(b, "data");
    Put32(b, dataSize);
    for (double v : samples) {
        double c = std::fmax(-1.0, std::fmin(1.0, v));
        Put16(b, uint16_t(int16_t(std::lround(c * 32767.0))));
    }
    return b;
}


} // namespace

bool WriteSounds(const std::string& dir)
{
    bool ok = WriteFile(dir + "/LaserShot.wav", Encode(LaserShot()));
    ok = WriteFile(dir + "/ExpGen.wav", Encode(Explosion())) && ok;
    ok = WriteFile(dir + "/Missile.wav", Encode(Missile())) && ok;
    ok = WriteFile(dir + "/Powerup.wav", Encode(Powerup())) && ok;
    ok = WriteFile(dir + "/Beep.wav", Encode(Beep())) && ok;
    return ok;
}
