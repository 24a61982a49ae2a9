#pragma once

#include <QAbstractTableModel>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "radio/channels/ChannelGrid.h"

namespace kestrune::windows {

/// The channels' grid for a view. It keeps a copy of its own, so that the view never refers to a row that is
/// gone, and updates it in the smallest steps: a reply from the radio changes one row, a new channel inserts
/// one, and a sort moves rows. What the user has selected stays selected.
class ChannelGridModel final : public QAbstractTableModel {
 public:
  /// The grid must outlive the model.
  explicit ChannelGridModel(const radio::ChannelGrid& grid, QObject* parent = nullptr);

  /// What is said of a whole row, as markup; empty if nothing is.
  static constexpr int kRowTipRole = Qt::UserRole;
  /// The text behind it, by channel.
  std::function<std::string(std::int16_t channel)> RowTip = [](auto) { return std::string(); };

  /// Costs nothing if the grid has not changed.
  void Update();

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  using Row = radio::ChannelGrid::Row;
  using Keys = std::vector<std::string>;

  [[nodiscard]] static Keys KeysOf(const std::vector<Row>& rows);
  void RemoveAllBut(const Keys& wanted);
  void BringIntoOrder(const Keys& wanted);
  void InsertNew(const std::vector<Row>& rows, const Keys& wanted);
  void WriteChanged(const std::vector<Row>& rows);

  const radio::ChannelGrid& grid_;
  std::optional<std::uint64_t> revision_;
  Row titles_;
  std::vector<Row> rows_;
};

}  // namespace kestrune::windows
