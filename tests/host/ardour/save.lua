-- A session to be opened by reopen.lua.
local studio = dofile(arg[3] .. "/studio.lua")
studio.open()
studio.playPlainly()
studio.choose(1, "tenuto", 60)
studio.setVelocityAdd(-40)
studio.set("Tempo", 2, 0, 2) -- double
studio.play(0, 48000)
studio.save()
studio.finish()
