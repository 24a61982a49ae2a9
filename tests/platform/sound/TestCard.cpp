// A sound card that is a few variables, as a plugin of libasound: a stereo capture volume of 32 steps with a switch a
// side, a mono microphone, a volume of playback, and a control that chooses between three sources.
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <alsa/asoundlib.h>
#include <alsa/control_external.h>

namespace {

struct Control {
  const char* Name;
  snd_ctl_elem_type_t Type;
  unsigned Channels;
  long Most;
};

constexpr std::array<Control, 6> kControls{{
    {"Line Capture Volume", SND_CTL_ELEM_TYPE_INTEGER, 2, 31},
    {"Line Capture Switch", SND_CTL_ELEM_TYPE_BOOLEAN, 2, 1},
    {"Mic Capture Volume", SND_CTL_ELEM_TYPE_INTEGER, 1, 10},
    {"Master Playback Volume", SND_CTL_ELEM_TYPE_INTEGER, 2, 100},
    {"Input Source", SND_CTL_ELEM_TYPE_ENUMERATED, 1, 2},
    {"Tone Capture Enum", SND_CTL_ELEM_TYPE_ENUMERATED, 1, 2},
}};
constexpr std::array<const char*, 3> kChoices{"Front Mic", "Line", "CD"};

struct Card {
  snd_ctl_ext_t Ext{};
  std::array<std::array<long, 2>, kControls.size()> Values{
      {{31, 31}, {1, 1}, {5, 5}, {0, 0}, {1, 1}, {0, 0}}};
};

Card& CardOf(snd_ctl_ext_t* ext) {
  return *static_cast<Card*>(ext->private_data);
}

void Close(snd_ctl_ext_t* ext) {
  delete &CardOf(ext);
}

int Count(snd_ctl_ext_t* /*ext*/) {
  return static_cast<int>(kControls.size());
}

int List(snd_ctl_ext_t* /*ext*/, unsigned offset, snd_ctl_elem_id_t* id) {
  snd_ctl_elem_id_set_interface(id, SND_CTL_ELEM_IFACE_MIXER);
  snd_ctl_elem_id_set_name(id, kControls.at(offset).Name);
  return 0;
}

snd_ctl_ext_key_t Find(snd_ctl_ext_t* /*ext*/, const snd_ctl_elem_id_t* id) {
  for (std::size_t i = 0; i < kControls.size(); ++i)
    if (std::strcmp(snd_ctl_elem_id_get_name(id), kControls.at(i).Name) == 0) return i;
  return SND_CTL_EXT_KEY_NOT_FOUND;
}

int Attribute(snd_ctl_ext_t* /*ext*/, snd_ctl_ext_key_t key, int* type, unsigned* access, unsigned* count) {
  *type = kControls.at(key).Type;
  *access = SND_CTL_EXT_ACCESS_READWRITE;
  *count = kControls.at(key).Channels;
  return 0;
}

int IntegerInfo(snd_ctl_ext_t* /*ext*/, snd_ctl_ext_key_t key, long* least, long* most, long* step) {
  *least = 0;
  *most = kControls.at(key).Most;
  *step = 1;
  return 0;
}

int EnumeratedInfo(snd_ctl_ext_t* /*ext*/, snd_ctl_ext_key_t /*key*/, unsigned* items) {
  *items = kChoices.size();
  return 0;
}

int EnumeratedName(snd_ctl_ext_t* /*ext*/, snd_ctl_ext_key_t /*key*/, unsigned item, char* name,
                   std::size_t size) {
  std::snprintf(name, size, "%s", kChoices.at(item));
  return 0;
}

int ReadInteger(snd_ctl_ext_t* ext, snd_ctl_ext_key_t key, long* value) {
  std::memcpy(value, CardOf(ext).Values.at(key).data(), kControls.at(key).Channels * sizeof(long));
  return 0;
}

/// A test unplugs the card by a variable of the environment.
bool Unplugged() {
  return std::getenv("KESTRUNE_TEST_CARD_UNPLUGGED") != nullptr;
}

int WriteInteger(snd_ctl_ext_t* ext, snd_ctl_ext_key_t key, long* value) {
  if (Unplugged()) return -ENODEV;
  std::memcpy(CardOf(ext).Values.at(key).data(), value, kControls.at(key).Channels * sizeof(long));
  return 1;
}

int ReadEnumerated(snd_ctl_ext_t* ext, snd_ctl_ext_key_t key, unsigned* items) {
  *items = static_cast<unsigned>(CardOf(ext).Values.at(key)[0]);
  return 0;
}

int WriteEnumerated(snd_ctl_ext_t* ext, snd_ctl_ext_key_t key, unsigned* items) {
  if (Unplugged()) return -ENODEV;
  CardOf(ext).Values.at(key)[0] = *items;
  return 1;
}

int ReadEvent(snd_ctl_ext_t* /*ext*/, snd_ctl_elem_id_t* /*id*/, unsigned* /*mask*/) {
  return -EAGAIN;
}

snd_ctl_ext_callback_t Callbacks() {
  snd_ctl_ext_callback_t callbacks{};
  callbacks.close = &Close;
  callbacks.elem_count = &Count;
  callbacks.elem_list = &List;
  callbacks.find_elem = &Find;
  callbacks.get_attribute = &Attribute;
  callbacks.get_integer_info = &IntegerInfo;
  callbacks.get_enumerated_info = &EnumeratedInfo;
  callbacks.get_enumerated_name = &EnumeratedName;
  callbacks.read_integer = &ReadInteger;
  callbacks.read_enumerated = &ReadEnumerated;
  callbacks.write_integer = &WriteInteger;
  callbacks.write_enumerated = &WriteEnumerated;
  callbacks.read_event = &ReadEvent;
  return callbacks;
}

}  // namespace

extern "C" {
SND_CTL_PLUGIN_DEFINE_FUNC(kestrunetest);

SND_CTL_PLUGIN_DEFINE_FUNC(kestrunetest) {
  static_cast<void>(root);
  static_cast<void>(conf);
  if (Unplugged()) return -ENODEV;
  static const snd_ctl_ext_callback_t kCallbacks = Callbacks();
  auto* card = new Card;
  card->Ext.version = SND_CTL_EXT_VERSION;
  std::strcpy(card->Ext.id, "test");
  std::strcpy(card->Ext.name, "Test Card");
  card->Ext.poll_fd = -1;
  card->Ext.callback = &kCallbacks;
  card->Ext.private_data = card;
  const int error = snd_ctl_ext_create(&card->Ext, name, mode);
  if (error < 0) {
    delete card;
    return error;
  }
  *handlep = card->Ext.handle;
  return 0;
}

SND_CTL_PLUGIN_SYMBOL(kestrunetest)
}
