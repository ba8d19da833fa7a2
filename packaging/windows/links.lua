-- Links between the packaged documents lead to the web pages made of them. The other documents stay
-- with the sources: what would lead there is plain text.
local packaged = {["user-guide"] = true, ["rule-file"] = true, ["windows"] = true}

function Link(link)
    local name, place = link.target:match("^([%w-]+)%.md(.*)$")
    if name and packaged[name] then
        link.target = name .. ".html" .. place
    elseif link.target:match("%.md") or link.target:match("^%.%./") then
        return link.content
    end
    return link
end
