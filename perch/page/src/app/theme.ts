// Colours and measures of the page. Greys have no tint and the accent is kept to what is set, so that nothing
// beside the picture colours how it is seen.
import { css } from 'lit';

export const pageStyle = css`
  :root {
    color-scheme: dark;
    --ground: #1f1f1f;
    --raised: #2b2b2b;
    --well: #161616;
    --line: #3d3d3d;
    --edge: #8a8a8a;
    --text: #dadada;
    --dim: #a6a6a6;
    --accent: #e2a541;
    --on-accent: #191919;
    --bad: #ff9583;
    --around: #333333;
    --panel: 400px;
    --name: 138px; /* of a parameter */
    --gap: 8px;
    --face: system-ui, 'DejaVu Sans', 'Segoe UI', sans-serif;
    --font: 12px/16px var(--face);
    --mono: 11px/16px ui-monospace, 'DejaVu Sans Mono', Menlo, Consolas, monospace;
  }
  :root[data-surroundings='light'] {
    color-scheme: light;
    --ground: #e6e6e6;
    --raised: #f7f7f7;
    --well: #ffffff;
    --line: #c2c2c2;
    --edge: #757575;
    --text: #1c1c1c;
    --dim: #525252;
    --accent: #8a5600;
    --on-accent: #ffffff;
    --bad: #a31b00;
    --around: #8c8c8c;
  }
  @media (max-width: 1200px) {
    :root {
      --panel: 352px;
      --name: 112px;
    }
  }
  html,
  body {
    margin: 0;
    height: 100%;
    overflow: clip;
    background: var(--ground);
    color: var(--text);
    font: var(--font);
  }
`;

// What every component's style begins with.
export const shared = css`
  :host {
    display: block;
    box-sizing: border-box;
  }
  * {
    box-sizing: border-box;
  }
  :focus-visible {
    outline: 2px solid var(--accent);
    outline-offset: 1px;
  }
  button,
  select,
  input[type='text'] {
    height: 22px;
    margin: 0;
    padding: 0 7px;
    border: 1px solid var(--line);
    border-radius: 3px;
    background: var(--raised);
    color: var(--text);
    font: var(--font);
  }
  input[type='text'] {
    background: var(--well);
    font-variant-numeric: tabular-nums;
  }
  select {
    padding: 0 3px;
  }
  button {
    cursor: default;
    white-space: nowrap;
  }
  button:hover:not(:disabled),
  select:hover:not(:disabled),
  input[type='text']:hover:not(:disabled) {
    border-color: var(--edge);
  }
  button[aria-pressed='true'] {
    border-color: var(--accent);
    color: var(--accent);
  }
  button:disabled,
  select:disabled,
  input:disabled {
    opacity: 0.45;
  }
  button.main {
    border-color: var(--accent);
    background: var(--accent);
    color: var(--on-accent);
    font-weight: 600;
  }
  button.bare {
    width: 22px;
    padding: 0;
    border-color: transparent;
    background: none;
  }
  button svg {
    display: block;
    width: 14px;
    height: 14px;
    margin: auto;
    fill: none;
    stroke: currentColor;
    stroke-width: 1.5;
  }
  .dim {
    color: var(--dim);
  }
  .numbers {
    font-variant-numeric: tabular-nums;
  }
  .segments {
    display: flex;
  }
  .segments button {
    border-radius: 0;
    margin-left: -1px;
  }
  .segments button:first-child {
    border-radius: 3px 0 0 3px;
    margin-left: 0;
  }
  .segments button:last-child {
    border-radius: 0 3px 3px 0;
  }
  .segments button[aria-pressed='true'] {
    z-index: 1;
    position: relative;
  }
`;
