// How a native slider looks: a thin groove, filled up to the thumb. --share says how far, from 0 to 1.
import { css } from 'lit';

export const rangeStyle = css`
  input[type='range'] {
    --thumb: 12px;
    appearance: none;
    width: 100%;
    height: 20px;
    margin: 0;
    background: none;
    border-radius: 3px;
  }
  input[type='range']::-webkit-slider-runnable-track {
    height: 4px;
    border-radius: 2px;
    background: linear-gradient(
      to right,
      var(--accent) calc(var(--thumb) / 2 + (100% - var(--thumb)) * var(--share, 0)),
      var(--line) 0
    );
  }
  input[type='range']::-moz-range-track {
    height: 4px;
    border-radius: 2px;
    background: var(--line);
  }
  input[type='range']::-moz-range-progress {
    height: 4px;
    border-radius: 2px;
    background: var(--accent);
  }
  input[type='range']::-webkit-slider-thumb {
    appearance: none;
    width: var(--thumb);
    height: 14px;
    margin-top: -5px;
    border: 1px solid var(--ground);
    border-radius: 3px;
    background: var(--text);
  }
  input[type='range']::-moz-range-thumb {
    width: var(--thumb);
    height: 14px;
    border: 1px solid var(--ground);
    border-radius: 3px;
    background: var(--text);
  }
`;
