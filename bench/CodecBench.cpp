// What EncodedFile costs beside the bare libraries on the same samples. "ratio" is our processor time over the
// library's; both are taken in turn, so that a busy machine shifts both.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <FLAC/stream_encoder.h>
#include <benchmark/benchmark.h>
#include <lame/lame.h>
#include <opusenc.h>
#include <sndfile.h>
#include <spandsp/telephony.h>
#include <vorbis/vorbisenc.h>
// The library's headers need the one above first.
#include <spandsp/g726.h>

#include "base/Ignored.h"
#include "platform/codec/EncodedFile.h"
#include "platform/codec/LameSettings.h"

namespace kestrune {
namespace {

using platform::EncodedFile;
using platform::Mp3Parameters;
using Samples = std::vector<std::int16_t>;

constexpr int kRate = 44100;
constexpr std::size_t kBlockFrames = kRate / 10;

double ProcessorSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

Samples MakeSound(int seconds, int channels) {
  Samples samples;
  std::uint32_t noise = 1;
  for (int i = 0; i < seconds * kRate; ++i) {
    noise = noise * 1664525U + 1013904223U;
    const double tone = 9000 * std::sin(i * 0.05) * std::sin(i * 0.00007) + 5000 * std::sin(i * 0.31);
    for (int channel = 0; channel < channels; ++channel) {
      samples.push_back(static_cast<std::int16_t>(tone * (1 - 0.3 * channel) + (noise >> 20)));
    }
  }
  return samples;
}

template <typename Write>
void InBlocks(const Samples& samples, int channels, Write write) {
  const std::size_t block = kBlockFrames * static_cast<std::size_t>(channels);
  for (std::size_t at = 0; at < samples.size(); at += block) {
    write(std::span(samples).subspan(at, std::min(block, samples.size() - at)));
  }
}

Mp3Parameters Mp3(std::int16_t method) {
  Mp3Parameters parameters;
  parameters.Bitrate = 160;
  parameters.VBRCodingMethod = method;
  parameters.VBRQuality = 4;
  parameters.VBRTargetBitrate = 128;
  parameters.VBRMaxBitrate = 160;
  parameters.VBRHeader = true;
  parameters.TypeStereo = 2;
  parameters.Quality = 4;
  return parameters;
}

// The bare libraries, as their own manuals show their use.

void BareMp3(const Mp3Parameters& parameters, const std::string& path, const Samples& samples) {
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  auto* const lame = lame_init();
  base::Ignored(platform::ApplyMp3Parameters(lame, parameters));
  lame_set_bWriteVbrTag(lame, 1);
  lame_init_params(lame);
  std::vector<unsigned char> mp3(kBlockFrames * 5 / 4 + 7200);
  const auto size = static_cast<int>(mp3.size());
  InBlocks(samples, 2, [&](std::span<const std::int16_t> block) {
    const int bytes = lame_encode_buffer_interleaved(lame, const_cast<std::int16_t*>(block.data()),
                                                     static_cast<int>(block.size() / 2), mp3.data(), size);
    std::fwrite(mp3.data(), 1, static_cast<std::size_t>(bytes), file);
  });
  const int bytes = lame_encode_flush(lame, mp3.data(), size);
  std::fwrite(mp3.data(), 1, static_cast<std::size_t>(bytes), file);
  std::rewind(file);
  const std::size_t tag = lame_get_lametag_frame(lame, mp3.data(), mp3.size());
  std::fwrite(mp3.data(), 1, tag, file);
  lame_close(lame);
  std::fclose(file);
}

void BareOgg(const std::string& path, const Samples& samples) {
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  vorbis_info info;
  vorbis_info_init(&info);
  vorbis_encode_init(&info, 2, kRate, -1, 160000, -1);
  vorbis_comment comment;
  vorbis_comment_init(&comment);
  vorbis_dsp_state dsp;
  vorbis_analysis_init(&dsp, &info);
  vorbis_block block;
  vorbis_block_init(&dsp, &block);
  ogg_stream_state stream;
  ogg_stream_init(&stream, 1);
  std::array<ogg_packet, 3> headers{};
  vorbis_analysis_headerout(&dsp, &comment, &headers[0], &headers[1], &headers[2]);
  for (ogg_packet& header : headers) ogg_stream_packetin(&stream, &header);
  ogg_page page;
  const auto save = [&] {
    std::fwrite(page.header, 1, static_cast<std::size_t>(page.header_len), file);
    std::fwrite(page.body, 1, static_cast<std::size_t>(page.body_len), file);
  };
  const auto drain = [&] {
    while (vorbis_analysis_blockout(&dsp, &block) == 1) {
      vorbis_analysis(&block, nullptr);
      vorbis_bitrate_addblock(&block);
      ogg_packet packet;
      while (vorbis_bitrate_flushpacket(&dsp, &packet) == 1) {
        ogg_stream_packetin(&stream, &packet);
        while (ogg_stream_pageout(&stream, &page) != 0) save();
      }
    }
  };
  while (ogg_stream_flush(&stream, &page) != 0) save();
  InBlocks(samples, 2, [&](std::span<const std::int16_t> part) {
    const auto frames = static_cast<int>(part.size() / 2);
    float** const planes = vorbis_analysis_buffer(&dsp, frames);
    for (std::size_t i = 0; i < part.size(); ++i)
      planes[i % 2][i / 2] = static_cast<float>(part[i]) / 32768.0F;
    vorbis_analysis_wrote(&dsp, frames);
    drain();
  });
  vorbis_analysis_wrote(&dsp, 0);
  drain();
  ogg_stream_clear(&stream);
  vorbis_block_clear(&block);
  vorbis_dsp_clear(&dsp);
  vorbis_comment_clear(&comment);
  vorbis_info_clear(&info);
  std::fclose(file);
}

void BareFlac(unsigned level, const std::string& path, const Samples& samples) {
  FLAC__StreamEncoder* const flac = FLAC__stream_encoder_new();
  FLAC__stream_encoder_set_channels(flac, 2);
  FLAC__stream_encoder_set_bits_per_sample(flac, 16);
  FLAC__stream_encoder_set_sample_rate(flac, kRate);
  FLAC__stream_encoder_set_compression_level(flac, level);
  FLAC__stream_encoder_init_file(flac, path.c_str(), nullptr, nullptr);
  InBlocks(samples, 2, [&](std::span<const std::int16_t> block) {
    const std::vector<FLAC__int32> wide(block.begin(), block.end());
    FLAC__stream_encoder_process_interleaved(flac, wide.data(), static_cast<std::uint32_t>(block.size() / 2));
  });
  FLAC__stream_encoder_finish(flac);
  FLAC__stream_encoder_delete(flac);
}

void BareOpus(int bitrate, const std::string& path, const Samples& samples) {
  OggOpusComments* const comments = ope_comments_create();
  OggOpusEnc* const opus = ope_encoder_create_file(path.c_str(), comments, kRate, 2, 0, nullptr);
  ope_encoder_ctl(opus, OPUS_SET_BITRATE(bitrate * 1000));
  ope_encoder_ctl(opus, OPUS_SET_SIGNAL(OPUS_SIGNAL_MUSIC));
  InBlocks(samples, 2, [&](std::span<const std::int16_t> block) {
    ope_encoder_write(opus, block.data(), static_cast<int>(block.size() / 2));
  });
  ope_encoder_drain(opus);
  ope_encoder_destroy(opus);
  ope_comments_destroy(comments);
}

void BareSndfile(int format, int channels, const std::string& path, const Samples& samples) {
  SF_INFO info{};
  info.samplerate = kRate;
  info.channels = channels;
  info.format = format;
  SNDFILE* const file = sf_open(path.c_str(), SFM_WRITE, &info);
  InBlocks(samples, channels, [&](std::span<const std::int16_t> block) {
    sf_write_short(file, block.data(), static_cast<sf_count_t>(block.size()));
  });
  sf_close(file);
}

void BareG726(int bits, const std::string& path, const Samples& samples) {
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  g726_state_t* const state = g726_init(nullptr, bits * 8000, G726_ENCODING_LINEAR, G726_PACKING_LEFT);
  std::array<std::uint8_t, kBlockFrames> codes{};
  InBlocks(samples, 1, [&](std::span<const std::int16_t> block) {
    const int bytes = g726_encode(state, codes.data(), block.data(), static_cast<int>(block.size()));
    std::fwrite(codes.data(), 1, static_cast<std::size_t>(bytes), file);
  });
  g726_free(state);
  std::fclose(file);
}

struct Contest {
  std::string Name;
  int Channels;
  std::function<void(EncodedFile&)> Prepare;
  std::function<void(const std::string&, const Samples&)> Bare;
};

std::vector<Contest> Contests() {
  std::vector<Contest> contests;
  for (const auto& [name, method] :
       {std::pair{"Mp3Constant160", -1}, {"Mp3Variable", 0}, {"Mp3Average128", 4}}) {
    const Mp3Parameters parameters = Mp3(static_cast<std::int16_t>(method));
    contests.push_back({name, 2, [=](EncodedFile& file) { file.SetFormat(parameters); },
                        [=](const std::string& path, const Samples& s) { BareMp3(parameters, path, s); }});
  }
  contests.push_back({"Ogg160", 2,
                      [](EncodedFile& file) {
                        file.SetFormat(platform::OggFormat{kRate, 2, 160, 0, 0, -1});
                      },
                      BareOgg});
  const auto sndfile = [&](const char* name, int channels, int format,
                           std::function<void(EncodedFile&)> prepare) {
    contests.push_back({name, channels, std::move(prepare), [=](const std::string& path, const Samples& s) {
                          BareSndfile(format, channels, path, s);
                        }});
  };
  sndfile("Wav16", 2, SF_FORMAT_WAV | SF_FORMAT_PCM_16, [](EncodedFile& file) {
    file.SetFormat(platform::WavFormat{kRate, 2, 16});
  });
  sndfile("Wav8", 2, SF_FORMAT_WAV | SF_FORMAT_PCM_U8, [](EncodedFile& file) {
    file.SetFormat(platform::WavFormat{kRate, 2, 8});
  });
  sndfile("Raw16", 2, SF_FORMAT_RAW | SF_FORMAT_PCM_16, [](EncodedFile& file) {
    file.SetFormat(platform::RawFormat{1, kRate, 2, 16});
  });
  sndfile("RawMuLaw", 2, SF_FORMAT_RAW | SF_FORMAT_ULAW, [](EncodedFile& file) {
    file.SetFormat(platform::RawFormat{3, kRate, 2, 16});
  });
  sndfile("Vox", 1, SF_FORMAT_RAW | SF_FORMAT_VOX_ADPCM,
          [](EncodedFile& file) { file.SetFormat(platform::VoxFormat{kRate}); });
  contests.push_back({"G726Bits4", 1,
                      [](EncodedFile& file) {
                        file.SetFormat(platform::G726Format{kRate, 4});
                      },
                      [](const std::string& path, const Samples& s) { BareG726(4, path, s); }});
  const auto flac = [&contests](const char* name, std::int16_t level) {
    contests.push_back({name, 2,
                        [=](EncodedFile& file) {
                          file.SetFormat(platform::FlacFormat{kRate, 2, level});
                        },
                        [=](const std::string& path, const Samples& s) {
                          BareFlac(static_cast<unsigned>(level), path, s);
                        }});
  };
  flac("FlacLevel5", 5);
  flac("FlacLevel8", 8);
  contests.push_back({"Opus128", 2,
                      [](EncodedFile& file) {
                        file.SetFormat(platform::OpusFormat{kRate, 2, 128});
                      },
                      [](const std::string& path, const Samples& s) { BareOpus(128, path, s); }});
  return contests;
}

class BenchFolder {
 public:
  BenchFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "codec-bench-XXXXXX").string();
    if (::mkdtemp(pattern.data()) != nullptr) path_ = pattern;
  }
  ~BenchFolder() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
  }
  BenchFolder(const BenchFolder&) = delete;
  BenchFolder& operator=(const BenchFolder&) = delete;
  [[nodiscard]] std::string Path(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

void BesideTheLibrary(benchmark::State& state) {
  const Contest contest = Contests().at(static_cast<std::size_t>(state.range(0)));
  state.SetLabel(contest.Name);
  constexpr int kSeconds = 20;
  const BenchFolder folder;
  const Samples samples = MakeSound(kSeconds, contest.Channels);
  double ours = 0;
  double bare = 0;
  for ([[maybe_unused]] auto step : state) {
    const double start = ProcessorSeconds();
    EncodedFile file;
    contest.Prepare(file);
    base::Ignored(file.Create(folder.Path("ours")));
    InBlocks(samples, contest.Channels, [&](auto block) { base::Ignored(file.WriteBlock(block)); });
    base::Ignored(file.Close());
    const double middle = ProcessorSeconds();
    contest.Bare(folder.Path("bare"), samples);
    const double end = ProcessorSeconds();
    state.SetIterationTime(middle - start);
    ours += middle - start;
    bare += end - middle;
  }
  state.counters["ratio"] = ours / bare;
  state.counters["realtime"] = kSeconds * static_cast<double>(state.iterations()) / ours;
}

BENCHMARK(BesideTheLibrary)->DenseRange(0, 12)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrune
