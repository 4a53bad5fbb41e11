#pragma once

#include <QImage>
#include <QWidget>

namespace lumiran {

// Picture2: the document's picture at its pixel size.
class PictureView : public QWidget {
    Q_OBJECT
  public:
    explicit PictureView(QWidget* parent = nullptr);

    void setImage(QImage image);
    [[nodiscard]] const QImage& image() const { return image_; }
    [[nodiscard]] QSize sizeHint() const override { return image_.size(); }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QImage image_;
};

} // namespace lumiran
