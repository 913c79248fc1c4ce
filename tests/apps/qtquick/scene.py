#!/usr/bin/env python3
"""A scene of Qt Quick on OpenGL ES: scene.py PyQt5|PyQt6. Desktop GL is what Qt's own runners ask for."""

import os
import sys
from importlib import import_module
from pathlib import Path

binding = sys.argv[1]
core, gui, qml, quick = (import_module(f"{binding}.Qt{part}") for part in ("Core", "Gui", "Qml", "Quick"))
surface = gui.QSurfaceFormat()
surface.setRenderableType(gui.QSurfaceFormat.RenderableType.OpenGLES)
gui.QSurfaceFormat.setDefaultFormat(surface)
if binding == "PyQt6":
    quick.QQuickWindow.setGraphicsApi(quick.QSGRendererInterface.GraphicsApi.OpenGL)
application = gui.QGuiApplication(sys.argv)
engine = qml.QQmlApplicationEngine()
engine.rootContext().setContextProperty("folder", core.QUrl.fromLocalFile(os.getcwd() + "/"))
engine.load(core.QUrl.fromLocalFile(str(Path(__file__).with_name("scene.qml"))))
sys.exit(application.exec() if engine.rootObjects() else 1)
