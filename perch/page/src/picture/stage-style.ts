import { css } from 'lit';

export const stageStyle = css`
  :host {
    height: 100%;
    min-height: 0;
  }
  .viewport {
    display: flex;
    gap: 1px;
    height: 100%;
    overflow: clip;
    background: var(--line);
    cursor: crosshair;
    touch-action: none;
    user-select: none;
  }
  .viewport:focus-visible {
    outline-offset: -2px;
  }
  .pane {
    position: relative;
    flex: 1;
    min-width: 0;
    overflow: clip;
    background: var(--around);
  }
  .sheet {
    position: absolute;
  }
  canvas {
    position: absolute;
    inset: 0;
    width: 100%;
    height: 100%;
  }
  canvas[hidden] {
    display: none;
  }
  .overlay {
    opacity: 0.6;
  }
  .black {
    background: #000;
  }
  .white {
    background: #fff;
  }
  .checkerboard {
    background: repeating-conic-gradient(#6e6e6e 0 25%, #8a8a8a 0 50%) 0 0 / 16px 16px;
  }
  .label {
    position: absolute;
    top: 8px;
    left: 8px;
    padding: 1px 6px;
    border-radius: 3px;
    background: #000c;
    color: #fff;
    pointer-events: none;
  }
  .cursor {
    position: absolute;
    width: 21px;
    height: 21px;
    margin: -10.5px;
    background:
      linear-gradient(#fff, #fff) 50% 0 / 1px 8px no-repeat,
      linear-gradient(#fff, #fff) 50% 100% / 1px 8px no-repeat,
      linear-gradient(#fff, #fff) 0 50% / 8px 1px no-repeat,
      linear-gradient(#fff, #fff) 100% 50% / 8px 1px no-repeat;
    filter: drop-shadow(0 0 1px #000);
    pointer-events: none;
  }
  .mark {
    transform: rotate(45deg);
  }
  .span {
    position: absolute;
    inset: 0;
    width: 100%;
    height: 100%;
    pointer-events: none;
  }
  .span line {
    stroke: #fff;
    stroke-width: 2;
    stroke-dasharray: 5 3;
    filter: drop-shadow(0 0 1px #000);
  }
`;
