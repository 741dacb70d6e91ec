// The 3D view: the map as a surface, the models at the places of the table.
'use strict';
(async () => {
    const data = JSON.parse(document.getElementById('data').textContent);
    const view = document.getElementById('view');
    const slider = document.getElementById('level');
    const shownLevel = document.getElementById('level-text');
    const dark = matchMedia('(prefers-color-scheme: dark)');
    const palette = ['#d1495b', '#2e86ab', '#edae49', '#3f8f5f', '#8e6bbf', '#e07b39', '#4fb3bf', '#b0557f'];

    function fail(reason) {
        view.textContent = 'The 3D view cannot be drawn here (' + reason + '); the pictures show the places.';
        document.documentElement.dataset.view = 'failed';
    }

    async function unpacked(text) {
        const bytes = Uint8Array.from(atob(text), letter => letter.charCodeAt(0));
        const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream('gzip'));
        return new Blob([await new Response(stream).arrayBuffer()]);
    }

    function background() {
        return getComputedStyle(document.body).backgroundColor;
    }

    try {
        const stage = new NGL.Stage(view, {backgroundColor: background(), tooltip: false, quality: 'medium', sampleLevel: 0});
        view.stage = stage; // for the browser's console
        dark.addEventListener('change', () => stage.setParameters({backgroundColor: background()}));
        addEventListener('resize', () => stage.handleResize());

        const look = {
            isolevelType: 'value', smooth: 3, opacity: 0.35, side: 'front', opaqueBack: false, useWorker: false, boxSize: 0,
        };
        const surfaces = [];
        async function drawMap(packed, level, color) {
            const component = await stage.loadFile(await unpacked(packed), {ext: 'mrc', name: 'map'});
            surfaces.push({component, color, drawn: component.addRepresentation('surface', {...look, isolevel: level, color})});
        }
        // The library cannot smooth a surface where too many edges meet, as they do in noise: such a one is drawn as it is.
        addEventListener('error', event => {
            if (look.smooth === 0) return;
            event.preventDefault();
            look.smooth = 0;
            for (const surface of surfaces) {
                const level = surface.drawn.getParameters().isolevel;
                surface.component.removeRepresentation(surface.drawn);
                surface.drawn = surface.component.addRepresentation('surface', {...look, isolevel: level, color: surface.color});
            }
        });
        await drawMap(data.map, data.level, '#9db7d5');
        if (data.moved) await drawMap(data.moved.map, data.moved.level, '#e8836b');

        const files = await Promise.all(data.models.map(model => unpacked(model.structure)));
        const load = number => stage.loadFile(files[number], {ext: 'cif', name: data.models[number].name});
        const draw = (component, color) => component.addRepresentation('cartoon', {color, quality: 'medium', aspectRatio: 4});
        for (const number of data.fixed) draw(await load(number), '#9aa3ad');

        // Of several models at once each row has its own; of one model the rows share it.
        const movable = [];
        for (const [index, row] of data.rows.entries()) {
            if (!row.matrix || row.model === null) continue;
            const shared = data.together ? undefined : movable.find(entry => entry && entry.model === row.model);
            const component = shared ? shared.component : await load(row.model);
            if (!shared) draw(component, palette[data.together ? index % palette.length : 0]);
            movable[index] = {component, model: row.model};
            if (!shared) component.setTransform(new NGL.Matrix4().set(...row.matrix));
        }

        const calm = matchMedia('(prefers-reduced-motion: reduce)');
        function show(index) {
            const entry = movable[index];
            if (!entry) return;
            if (!data.together) {
                entry.component.setTransform(new NGL.Matrix4().set(...data.rows[index].matrix));
                for (const other of movable) if (other) other.component.setVisibility(other.component === entry.component);
            }
            if (view.dataset.row) stage.animationControls.move(entry.component.getCenter(), calm.matches ? 0 : 300);
            view.dataset.row = index;
        }

        let waiting = 0;
        slider.addEventListener('input', () => {
            const level = Number(slider.value);
            const deviations = (level - data.mean) / data.deviation;
            shownLevel.textContent = Number(level.toPrecision(3)) + ' (' + deviations.toFixed(1) + ' SD above mean)';
            clearTimeout(waiting);
            waiting = setTimeout(() => surfaces[0].drawn.setParameters({isolevel: level}), 80);
        });
        const whole = () => stage.autoView(0);
        document.getElementById('whole').addEventListener('click', whole);
        document.getElementById('close').addEventListener('click', () => {
            const entry = movable[Number(view.dataset.row)];
            if (entry) entry.component.autoView(0);
        });
        const turns = {ArrowLeft: [[0, 1, 0], -1], ArrowRight: [[0, 1, 0], 1], ArrowUp: [[1, 0, 0], -1], ArrowDown: [[1, 0, 0], 1]};
        view.addEventListener('keydown', event => {
            const turn = turns[event.key];
            if (!turn) return;
            event.preventDefault();
            stage.viewerControls.spin(new NGL.Vector3(...turn[0]), turn[1] * 0.1);
        });

        whole();
        document.addEventListener('show', event => show(event.detail));
        const chosen = document.querySelector('tr.shown');
        if (chosen) show(Number(chosen.dataset.row));
        document.documentElement.dataset.view = 'ready';
    } catch (error) {
        fail(error && error.message || String(error));
    }
})();
