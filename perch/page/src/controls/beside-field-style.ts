// A control with its number field beside it.
import { css } from 'lit';

export const besideFieldStyle = css`
  :host {
    display: grid;
    grid-template-columns: 1fr 68px;
    gap: var(--gap);
    align-items: center;
  }
`;
