function love.conf(t)
    t.window.title = "sprites"
    t.window.width = 200
    t.window.height = 150
    t.window.vsync = 0
    t.modules.audio = false
    t.modules.sound = false
    t.modules.joystick = false
end
