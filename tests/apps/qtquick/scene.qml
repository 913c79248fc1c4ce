import QtQuick 2.15
import QtQuick.Window 2.15

// Clipping, opacity and rotation; text in both of Qt's ways, which grows its glyph images; images in an
// atlas, drawn anew and with mipmaps; parts of the scene drawn into textures.
Window {
    id: root
    property real t: 0
    width: 240; height: 180; visible: true; color: "#203040"
    NumberAnimation on t { from: 0; to: 1; duration: 1000; loops: Animation.Infinite }

    Rectangle {
        x: 20 + 150 * root.t; y: 30; width: 61; height: 47; radius: 9
        color: "tomato"; rotation: 90 * root.t; antialiasing: true
    }
    Item {
        x: 140; y: 100; width: 80; height: 60; clip: true; rotation: 5
        Rectangle {
            width: 100; height: 100; opacity: 0.3 + 0.7 * root.t
            gradient: Gradient {
                GradientStop { position: 0; color: "gold" }
                GradientStop { position: 1; color: "teal" }
            }
        }
    }
    Text { x: 8; y: 8; text: root.t.toFixed(3); color: "white"; font.pixelSize: 17 }
    Text {
        x: 120; y: 8; color: "white"; font.pixelSize: 10 + 9 * root.t
        text: String.fromCharCode(65 + 57 * root.t, 97, 66); renderType: Text.NativeRendering
    }
    Repeater {
        model: ["a", "b"]
        Image { x: 10 + 45 * index; y: 60; source: folder + modelData + ".png"; mipmap: index == 1; scale: 1 - 0.6 * index }
    }
    Text {
        id: layered
        x: 20; y: 120; text: "layer"; color: "white"; font.pixelSize: 30
        layer.enabled: true; layer.mipmap: true; rotation: 360 * root.t
    }
    ShaderEffectSource {
        x: 120; y: 60; width: 41; height: 31; sourceItem: layered; opacity: 0.8
    }
    Canvas {
        x: 180; y: 20; width: 53; height: 37
        property real part: root.t
        onPartChanged: requestPaint()
        onPaint: {
            var c = getContext("2d");
            c.clearRect(0, 0, width, height);
            c.fillStyle = Qt.rgba(part, 1 - part, 0.5, 1);
            c.fillRect(5, 5, 40 * part, 25);
        }
    }
}
