import { css } from 'lit';

export const timeLineStyle = css`
  :host {
    display: grid;
    height: 100%;
    grid-template-rows: auto auto 1fr;
    gap: 3px;
    padding: 6px 8px 8px;
    border-top: 1px solid var(--line);
  }
  .bar,
  .set {
    display: flex;
    gap: 4px;
    align-items: center;
    min-width: 0;
  }
  .bar {
    gap: 12px;
  }
  .space {
    flex: 1;
  }
  number-field {
    width: 46px;
  }
  number-field.frame {
    width: 60px;
  }
  .rate {
    white-space: nowrap;
  }
  .frames {
    border: 0 solid transparent;
    border-width: 0 1px;
  }
  select {
    max-width: 150px;
  }
`;
