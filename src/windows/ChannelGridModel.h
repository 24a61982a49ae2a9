#pragma once

#include <QAbstractTableModel>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "presenters/ChannelListing.h"

namespace kestrune::windows {

/// The listed rows of the channels' grid for a view. It keeps a copy of its own, so that the view never refers to a row that is
/// gone, and updates it in the smallest steps: a reply from the radio changes one row, a new channel inserts
/// one, and a sort moves rows. What the user has selected stays selected.
class ChannelGridModel final : public QAbstractTableModel {
 public:
  /// The listing must outlive the model, which keeps it up to date.
  explicit ChannelGridModel(presenters::ChannelListing& listing, QObject* parent = nullptr);

  /// What is said of a whole row, as markup; empty if nothing is.
  static constexpr int kRowTipRole = Qt::UserRole;
  /// Whether the row is that of the tuned channel.
  static constexpr int kTunedRole = Qt::UserRole + 1;
  /// Whether the row is that of a favourite.
  static constexpr int kFavouriteRole = Qt::UserRole + 2;
  /// The text behind it, by channel.
  std::function<std::string(std::int16_t channel)> RowTip = [](auto) { return std::string(); };

  /// Costs nothing if the listing has not changed.
  void Update();

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  struct Row {
    radio::ChannelGrid::Row Cells;
    bool Tuned = false;
    bool Favourite = false;

    bool operator==(const Row&) const = default;
  };
  using Keys = std::vector<std::string>;

  [[nodiscard]] static Keys KeysOf(const std::vector<Row>& rows);
  void RemoveAllBut(const Keys& wanted);
  void BringIntoOrder(const Keys& wanted);
  void InsertNew(const std::vector<Row>& rows, const Keys& wanted);
  void WriteChanged(const std::vector<Row>& rows);

  [[nodiscard]] QVariant MarkOf(const QModelIndex& index, int role) const;

  presenters::ChannelListing& listing_;
  const radio::ChannelGrid& grid_;
  std::optional<std::uint64_t> revision_;
  radio::ChannelGrid::Row titles_;
  bool sorted_ = false;  // as the titles show it
  std::vector<Row> rows_;
};

}  // namespace kestrune::windows
