-- What a 2D game draws with: sprite batches, canvases, shaders, meshes, particles, stencils, text.
local g = love.graphics
local frame = 0
local image, batch, canvas, shader, mesh, particles, text, places, many, layers

function love.load()
    local pixels = love.image.newImageData(16, 16)
    pixels:mapPixel(function(x, y) return x / 15, y / 15, (x + y) % 2, x == y and 0.5 or 1 end)
    image = g.newImage(pixels, {mipmaps = true})
    image:setWrap("repeat", "mirroredrepeat")
    batch = g.newSpriteBatch(image, 32, "stream")
    canvas = g.newCanvas(64, 64, {msaa = 4})
    layers = g.newArrayImage({pixels, pixels})
    shader = g.newShader([[
        uniform float time;
        uniform vec2 points[3];
        vec4 effect(vec4 color, Image texture, vec2 at, vec2 screen) {
            vec4 found = Texel(texture, at + 0.1 * sin(time + 6.0 * at.yx));
            return found * color + 0.1 * vec4(points[1] + points[2], 0.0, 0.0);
        }]])
    mesh = g.newMesh({{"VertexPosition", "float", 2}, {"VertexColor", "byte", 4}},
        {{0, 0, 1, 0, 0, 1}, {30, 0, 0, 1, 0, 1}, {30, 30, 0, 0, 1, 1}, {0, 30, 1, 1, 0, 1}}, "fan",
        "dynamic")
    mesh:setVertexMap(1, 2, 3, 4)
    places = g.newMesh({{"Place", "float", 2}}, {{0, 0}, {40, 10}, {80, 30}}, nil, "static")
    many = g.newShader([[
        attribute vec2 Place;
        vec4 position(mat4 transform, vec4 at) { return transform * (at + vec4(Place, 0.0, 0.0)); }
    ]])
    mesh:attachAttribute("Place", places, "perinstance")
    particles = g.newParticleSystem(image, 50)
    particles:setParticleLifetime(5)
    particles:setSpeed(20, 40)
    particles:setSpread(6)
    particles:emit(40)
    text = g.newText(g.getFont())
end

function love.draw()
    frame = frame + 1
    if frame == 3 then g.captureScreenshot("frame.png") end
    particles:update(0.1)
    batch:clear()
    for i = 1, 20 do batch:add(i * 9, 10 * math.sin(frame + i), 0.1 * (frame + i), 1, 1, 8, 8) end
    mesh:setVertex(2, 30 + frame, 0, 0, 1, 0, 1)

    g.setCanvas({canvas, stencil = true})
    g.clear(0.1, 0.2, 0.3, 1)
    g.stencil(function() g.circle("fill", 32, 32, 20 + frame) end, "replace", 1)
    g.setStencilTest("greater", 0)
    g.draw(image, 0, 0, 0, 4, 4)
    g.setStencilTest()
    g.setCanvas()

    g.clear(0.2, 0.2, 0.2)
    g.draw(batch, 0, 30)
    g.setShader(shader)
    shader:send("time", frame)
    shader:send("points", {0, 0.1}, {0.2, 0.3}, {0.4, 0.5})
    g.draw(canvas, 100, 60)
    g.setShader()
    g.setScissor(10, 60, 60, 60)
    g.draw(mesh, 20, 70, 0.1 * frame)
    g.setScissor()
    g.setBlendMode("add")
    g.draw(particles, 60, 100)
    g.setBlendMode("alpha")
    g.setShader(many)
    g.drawInstanced(mesh, 3, 150, 10, 0, 0.4)
    g.setShader()
    g.drawLayer(layers, 2, 10, 40)
    g.setLineWidth(3)
    g.line(5, 140, 60, 120, 120 + frame, 145)
    text:set("frame " .. frame)
    g.draw(text, 5, 5)
    g.print("printed äöü", 90, 5 + frame)
end
