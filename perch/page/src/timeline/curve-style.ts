import { css } from 'lit';

export const curveStyle = css`
  :host {
    min-height: 0;
    overflow: hidden;
    background: var(--well);
    border: 1px solid var(--line);
    border-radius: 3px;
  }
  svg {
    display: block;
    touch-action: none;
  }
  .tick {
    stroke: var(--line);
    stroke-opacity: 0.5;
  }
  text {
    fill: var(--dim);
    font: 10px/1 var(--face);
    text-anchor: end;
  }
  .now {
    stroke: var(--accent);
  }
  .outside {
    fill: var(--line);
    fill-opacity: 0.45;
  }
  .curve {
    fill: none;
    stroke: var(--text);
    stroke-width: 1.5;
  }
  .key {
    fill: var(--text);
    stroke: var(--well);
    cursor: move;
    outline: none;
  }
  .key.here {
    fill: var(--accent);
  }
  .key:focus-visible {
    stroke: var(--accent);
    stroke-width: 2;
  }
  .key .area {
    fill: transparent;
    stroke: none;
  }
  .key:focus-visible .area {
    stroke: var(--accent);
    stroke-width: 1;
  }
  p {
    margin: 8px;
  }
`;
